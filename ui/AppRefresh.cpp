#include "parse/ReadState.h"
#include "platform/Text.h"
#include "ui/App.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/MainWindow.h"
#include "ui/PrivateMessages.h"
#include "ui/ProgressBar.h"
#include "ui/StoryScreen.h"
#include "ui/WaitCursor.h"

#include <algorithm>

namespace qf::ui {

void App::HandOver(std::function<void()> work) {
    handOvers_.Post(std::move(work));
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
        if (&channel == refreshingChannel_) {
            EndChannelRefresh();
        }
    }
}

void App::EndChannelRefresh() {
    refreshingChannel_ = nullptr;
    refreshCursor_.reset();
    if (!refreshAllRunning_) {
        store_.refresh().Finish();
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
    auto before = std::make_shared<Channel::ItemList>(std::move(items));
    if (channelScreen_->channel() == &channel) {
        channelScreen_->FollowRefresh(*before);
    }
    if (storyScreen_->channel() == &channel) {
        FollowRefreshOnStoryScreen(channel, before);
    }
    // Messages already on their way (a tap on a headline) may name a replaced story; they are
    // handled before this hand-over, which lets the stories go.
    retiredItems_.push_back(before);
    HandOver([this, before] { std::erase(retiredItems_, before); });
}

void App::FollowRefreshOnStoryScreen(Channel& channel,
                                     const std::shared_ptr<Channel::ItemList>& before) {
    const NewsItem* shown = storyScreen_->item();
    if (shown == nullptr) {
        return;
    }
    if (NewsItem* same = SameStory(*before, *shown, channel.items())) {
        storyScreen_->FollowRefresh(same);
        shownRetiredStory_.reset();
    } else if (std::ranges::any_of(*before,
                                   [shown](const auto& item) { return item.get() == shown; })) {
        // The story left the feed: its page stays for the reader, and nothing acts on it.
        shownRetiredStory_ = before;
    }
}

NewsItem* App::LiveStory(const Channel& channel, NewsItem* item) const {
    const auto holds = [item](const Channel::ItemList& list) {
        return std::ranges::any_of(list, [item](const auto& entry) { return entry.get() == item; });
    };
    if (holds(channel.items())) {
        return item;
    }
    for (const auto& before : retiredItems_) {
        if (holds(*before)) {
            return SameStory(*before, *item, channel.items());
        }
    }
    return nullptr;
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
