#pragma once

#include "net/RefreshObserver.h"

#include <QEvent>
#include <functional>
#include <memory>

class QObject;

namespace qf {
class NewsItem;
} // namespace qf

namespace qf::ui {

// The private messages of the main window, as event types of the same numbers.
enum PrivateMessage : int {
    QFM_OPENCHANNEL = 0x8110,
    QFM_OPENSTORY = 0x8111,
    QFM_LEAVEWELCOME = 0x8112,
    QFM_ITEMACTIVATE = 0x8120,
    QFM_ITEMMENU = 0x8121,
    QFM_NAVPREVIOUS = 0x8122,
    QFM_NAVNEXT = 0x8123,
    QFM_REFRESHDONE = 0x8130,
    // A refresh worker handed work to the main thread, which alone changes the model.
    kHandOverEvent = QFM_REFRESHDONE + 1,
};

// One private message with its arguments: the control that sent it, or the channel and story it
// concerns, or a finished channel and its completion.
class PrivateMessageEvent : public QEvent {
public:
    explicit PrivateMessageEvent(PrivateMessage message) : QEvent(Type(message)) {}

    PrivateMessage message() const { return static_cast<PrivateMessage>(type()); }

    int sourceControl = 0;
    Channel* channel = nullptr;
    NewsItem* item = nullptr;
    RefreshCompletion completion;
};

// Posts `event` to `target`'s queue; the queue owns it from then on. Safe from any thread.
void PostPrivateMessage(QObject* target, std::unique_ptr<PrivateMessageEvent> event);

// Shorthands for the common forms.
void PostControlMessage(QObject* target, PrivateMessage message, int sourceControl);
void PostRefreshDone(QObject* target, Channel* channel, RefreshCompletion completion);

} // namespace qf::ui

static_assert(qf::ui::QFM_REFRESHDONE == qf::QFM_REFRESHDONE);
