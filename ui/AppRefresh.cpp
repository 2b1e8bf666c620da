#include "ui/AppRefresh.h"

#include "model/ChannelStore.h"
#include "parse/ReadState.h"
#include "platform/Text.h"
#include "ui/AppScreens.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/MainWindow.h"
#include "ui/PrivateMessages.h"
#include "ui/ProgressBar.h"
#include "ui/QtText.h"
#include "ui/StoryScreen.h"
#include "ui/WaitCursor.h"

#include <algorithm>
#include <utility>

namespace qf::ui {

AppRefresh::AppRefresh(ChannelStore& store, AppScreens& screens)
    : store_(store), screens_(screens), handOvers_([&window = screens.window()] {
          PostPrivateMessage(&window, std::make_unique<PrivateMessageEvent>(kHandOverEvent));
      }),
      handOverToken_(std::make_shared<int>(0)) {}

AppRefresh::~AppRefresh() = default;

void AppRefresh::RunNextHandOver() {
    handOvers_.RunNext();
}

void AppRefresh::DropQueuedCompletions() {
    handOverToken_.reset();
}

void AppRefresh::ChannelRefreshStarted(const Channel& channel) {
    refreshCursor_ = std::make_unique<WaitCursor>();
    refreshingChannel_ = &channel;
}

void AppRefresh::AwaitOpening(Channel* channel, std::function<void(Channel&)> showFailed) {
    openingChannel_ = channel;
    showFailedOpening_ = std::move(showFailed);
}

void AppRefresh::ForgetChannel(const Channel* channel) {
    updating_.erase(channel);
    if (channel == openingChannel_) {
        AwaitOpening(nullptr, {});
    }
    if (channel == refreshingChannel_) {
        EndChannelRefresh();
    }
    if (screens_.story().channel() == nullptr) {
        shownRetiredStory_.reset();
    }
}

void AppRefresh::HandOver(std::function<void()> work) {
    handOvers_.Post(std::move(work));
}

void AppRefresh::ReportProgress(const RefreshProgress& progress) {
    HandOver([this, progress] { ShowProgressLine(progress); });
}

void AppRefresh::RedrawChannel(const Channel& channel) {
    screens_.channels().UpdateIcon(&channel);
    screens_.channels().UpdateRow(&channel, false);
    if (channel.state() == kChannelUpdating) {
        updating_.insert(&channel);
        screens_.ShowProgress(true);
    } else {
        updating_.erase(&channel);
        HideProgressWhenIdle();
        if (&channel == screens_.channel().channel()) {
            refreshCursor_.reset();
        }
        if (&channel == refreshingChannel_) {
            EndChannelRefresh();
        }
        if (&channel == openingChannel_ && channel.state() == kChannelFailed) {
            // The error text is set just after this redraw: the channel opens once it is.
            HandOver([this] { ShowFailedOpening(); });
        } else if (&channel == openingChannel_) {
            AwaitOpening(nullptr, {});
        }
    }
}

void AppRefresh::ShowFailedOpening() {
    if (openingChannel_ == nullptr || openingChannel_->state() != kChannelFailed) {
        return;
    }
    Channel* opened = std::exchange(openingChannel_, nullptr);
    const auto show = std::exchange(showFailedOpening_, {});
    if (show) {
        show(*opened);
    }
}

void AppRefresh::EndChannelRefresh() {
    refreshingChannel_ = nullptr;
    refreshCursor_.reset();
    if (!refreshAllRunning_) {
        store_.refresh().Finish();
    }
}

void AppRefresh::PostRefreshDone(Channel& channel, RefreshCompletion completion) {
    qf::ui::PostRefreshDone(&screens_.window(), &channel,
                            [token = std::weak_ptr<int>(handOverToken_),
                             completion = std::move(completion)](Channel& done) {
                                if (token.lock()) {
                                    completion(done);
                                }
                            });
}

void AppRefresh::RetireItems(Channel& channel, Channel::ItemList items) {
    auto before = std::make_shared<Channel::ItemList>(std::move(items));
    if (screens_.channel().channel() == &channel) {
        screens_.channel().FollowRefresh(*before);
    }
    if (screens_.story().channel() == &channel) {
        FollowRefreshOnStoryScreen(channel, before);
    }
    // Messages already on their way (a tap on a headline) may name a replaced story; they are
    // handled before this hand-over, which lets the stories go.
    retiredItems_.push_back(before);
    HandOver([this, before] { std::erase(retiredItems_, before); });
}

void AppRefresh::FollowRefreshOnStoryScreen(Channel& channel,
                                            const std::shared_ptr<Channel::ItemList>& before) {
    const NewsItem* shown = screens_.story().item();
    if (shown == nullptr) {
        return;
    }
    if (NewsItem* same = SameStory(*before, *shown, channel.items())) {
        screens_.story().FollowRefresh(same);
        shownRetiredStory_.reset();
    } else if (std::ranges::any_of(*before,
                                   [shown](const auto& item) { return item.get() == shown; })) {
        // The story left the feed: its page stays for the reader, and nothing acts on it.
        shownRetiredStory_ = before;
    }
}

NewsItem* AppRefresh::LiveStory(const Channel& channel, NewsItem* item) const {
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

void AppRefresh::RefreshAllFinished() {
    refreshAllRunning_ = false;
    HideProgressWhenIdle();
}

void AppRefresh::RefreshAllStarted() {
    refreshAllRunning_ = true;
    screens_.ShowProgress(true);
}

void AppRefresh::SetSyncRunning(bool running) {
    syncRunning_ = running;
    if (running) {
        screens_.ShowProgress(true);
    } else {
        HideProgressWhenIdle();
    }
}

void AppRefresh::HideProgressWhenIdle() {
    if (!running()) {
        screens_.ShowProgress(false);
    }
}

void AppRefresh::ShowProgressLine(const RefreshProgress& progress) {
    // The stage first: a long title is what the bar cuts short.
    std::u16string line(progress.stageText);
    if (!progress.title.empty()) {
        line += u": " + progress.title;
    }
    const QString text = ToQString(line);
    for (ProgressBar* bar : screens_.progressBars()) {
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
