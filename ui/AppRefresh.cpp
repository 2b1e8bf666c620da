#include "platform/Text.h"
#include "ui/App.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/MainWindow.h"
#include "ui/PrivateMessages.h"
#include "ui/ProgressBar.h"
#include "ui/StoryScreen.h"
#include "ui/WaitCursor.h"

namespace qf::ui {

void App::HandOver(std::function<void()> work) {
    PostHandOver(mainWindow_.get(),
                 [token = std::weak_ptr<int>(handOverToken_), work = std::move(work)] {
                     if (token.lock()) {
                         work();
                     }
                 });
}

void App::ReportProgress(const RefreshProgress& progress) {
    HandOver([this, progress] { ShowProgressLine(progress); });
}

void App::RedrawChannel(const Channel& channel) {
    channelsScreen_->UpdateIcon(&channel);
    channelsScreen_->UpdateRow(&channel, false);
    if (channel.state() == kChannelUpdating) {
        updating_.insert(&channel);
        ShowProgress(true);
    } else {
        updating_.erase(&channel);
        HideProgressWhenIdle();
        if (&channel == channelScreen_->channel()) {
            refreshCursor_.reset();
        }
    }
}

void App::PostRefreshDone(Channel& channel, RefreshCompletion completion) {
    qf::ui::PostRefreshDone(mainWindow_.get(), &channel,
                            [token = std::weak_ptr<int>(handOverToken_),
                             completion = std::move(completion)](Channel& done) {
                                if (token.lock()) {
                                    completion(done);
                                }
                            });
}

void App::RetireItems(Channel& channel, Channel::ItemList items) {
    // A screen that shows one of these stories keeps pointing at it until it is filled anew.
    if (channelScreen_->channel() == &channel || storyScreen_->channel() == &channel) {
        retiredItems_.push_back(std::move(items));
    }
}

void App::RefreshAllFinished() {
    refreshAllRunning_ = false;
    HideProgressWhenIdle();
}

void App::RefreshAllStarted() {
    refreshAllRunning_ = true;
    ShowProgress(true);
}

void App::HideProgressWhenIdle() {
    // Not `busy`: a failed "Refresh Channel" leaves it set until the next refresh of all
    // channels, and the control would stay up with nothing to stop.
    if (updating_.empty() && !refreshAllRunning_) {
        ShowProgress(false);
    }
}

void App::ShowProgress(bool shown) {
    channelsScreen_->ShowProgress(shown);
    channelScreen_->ShowProgress(shown);
    storyScreen_->ShowProgress(shown);
}

void App::ShowProgressLine(const RefreshProgress& progress) {
    // The stage first: a long title is what the bar cuts short.
    std::u16string line(progress.stageText);
    if (!progress.title.empty()) {
        line += u": " + progress.title;
    }
    const QString text = QString::fromStdU16String(line);
    for (ProgressBar* bar :
         {channelsScreen_->progress(), channelScreen_->progress(), storyScreen_->progress()}) {
        bar->SetText(text);
        if (progress.count > 0) {
            bar->SetRange(0, progress.count);
            bar->SetPosition(progress.position - 1);
        } else if (progress.totalBytes > 0) {
            bar->SetRange(0, static_cast<int>(std::min<int64_t>(progress.totalBytes, INT32_MAX)));
            bar->SetPosition(static_cast<int>(std::min(progress.bytesSoFar, progress.totalBytes)));
        } else {
            bar->SetRange(0, 0);
        }
    }
}

} // namespace qf::ui
