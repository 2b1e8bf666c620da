#include "ui/PrivateMessages.h"

#include <QCoreApplication>
#include <memory>

namespace qf::ui {

void PostPrivateMessage(QObject* target, std::unique_ptr<PrivateMessageEvent> event) {
    QCoreApplication::postEvent(target, event.release());
}

void PostControlMessage(QObject* target, PrivateMessage message, int sourceControl) {
    auto event = std::make_unique<PrivateMessageEvent>(message);
    event->sourceControl = sourceControl;
    PostPrivateMessage(target, std::move(event));
}

void PostRefreshDone(QObject* target, Channel* channel, RefreshCompletion completion) {
    auto event = std::make_unique<PrivateMessageEvent>(QFM_REFRESHDONE);
    event->channel = channel;
    event->completion = std::move(completion);
    PostPrivateMessage(target, std::move(event));
}

} // namespace qf::ui
