#pragma once

#include "model/Channel.h"
#include "net/RefreshObserver.h"
#include "ui/HandOverQueue.h"

#include <functional>
#include <memory>
#include <set>
#include <vector>

namespace qf {
class ChannelStore;
class NewsItem;
} // namespace qf

namespace qf::ui {

class AppScreens;
class WaitCursor;

// What the refresh workers ask of the screens, run on the main thread: the progress control
// while any channel updates, the rows of updated channels, and the stories a refresh replaced,
// kept while messages that name them are still on their way.
class AppRefresh : public RefreshObserver {
public:
    AppRefresh(ChannelStore& store, AppScreens& screens);
    ~AppRefresh() override;

    // Runs the next piece of work a worker handed over.
    void RunNextHandOver();
    // From here on completions that are still queued are dropped.
    void DropQueuedCompletions();

    // Whether a refresh of all channels or a sync runs, or any channel is being updated.
    bool running() const { return refreshAllRunning_ || syncRunning_ || !updating_.empty(); }
    void RefreshAllStarted();
    // A sync shows the progress control from its start to its end, whatever channels update
    // meanwhile.
    void SetSyncRunning(bool running);
    // A "Refresh Channel" of `channel` began: the wait cursor shows until its update ends.
    void ChannelRefreshStarted(const Channel& channel);
    // A "Refresh Channel" ended, however: busy and the stop request are cleared.
    void EndChannelRefresh();
    // A tap is downloading `channel` to open it: when that download fails, `showFailed` is
    // called with it (a success opens it through its completion). A later tap replaces it; null
    // forgets it.
    void AwaitOpening(Channel* channel, std::function<void(Channel&)> showFailed);
    // The channel is about to be deleted, or was: nothing here names it any longer. Only the
    // address is used.
    void ForgetChannel(const Channel* channel);

    // The live story for one that a message names, which a refresh may have replaced since.
    NewsItem* LiveStory(const Channel& channel, NewsItem* item) const;
    // The story screen shows a live story again.
    void LiveStoryShown() { shownRetiredStory_.reset(); }

    // RefreshObserver.
    void HandOver(std::function<void()> work) override;
    void ReportProgress(const RefreshProgress& progress) override;
    void RedrawChannel(const Channel& channel) override;
    void PostRefreshDone(Channel& channel, RefreshCompletion completion) override;
    void RetireItems(Channel& channel, Channel::ItemList items) override;
    void RefreshAllFinished() override;

private:
    // The story screen moves to the live story after a refresh replaced the channel's stories.
    void FollowRefreshOnStoryScreen(Channel& channel,
                                    const std::shared_ptr<Channel::ItemList>& before);
    void ShowProgressLine(const RefreshProgress& progress);
    void HideProgressWhenIdle();
    void ShowFailedOpening();

    ChannelStore& store_;
    AppScreens& screens_;
    HandOverQueue handOvers_;
    // Completions posted while this lives are run; those still queued when it goes are dropped.
    std::shared_ptr<int> handOverToken_;
    // Channels shown as being updated, and whether a refresh of all channels runs: the progress
    // control shows while either is so.
    std::set<const Channel*> updating_;
    bool refreshAllRunning_ = false;
    bool syncRunning_ = false;
    // Shown from "Refresh Channel" until the shown channel's update ends.
    std::unique_ptr<WaitCursor> refreshCursor_;
    // The channel of a "Refresh Channel" in flight: busy is set until its update ends, however.
    const Channel* refreshingChannel_ = nullptr;
    // The channel a tap waits for, and what shows it when its download fails.
    Channel* openingChannel_ = nullptr;
    std::function<void(Channel&)> showFailedOpening_;
    // Stories a refresh replaced, kept until the messages posted before the refresh that may
    // still name them have been handled.
    std::vector<std::shared_ptr<Channel::ItemList>> retiredItems_;
    // The replaced story the story screen still shows when the refresh left no live story for it.
    std::shared_ptr<Channel::ItemList> shownRetiredStory_;
};

} // namespace qf::ui
