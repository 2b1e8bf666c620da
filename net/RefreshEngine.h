#pragma once

#include "net/HttpFetcher.h"
#include "net/RefreshObserver.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace qf {

class Channel;
class ChannelStore;

// The due rules, as the store keeps them: a channel is due when more whole seconds than its
// interval (the store's when it has none) have passed since its last update; the store is due
// when it never ran a refresh of all channels or last did longer ago than its interval.
bool IsChannelDue(const ChannelStore& store, const Channel& channel);
bool IsStoreDue(const ChannelStore& store);

struct RefreshOptions {
    // Bounds the making of a connection and any stretch in which no byte moves.
    std::chrono::milliseconds timeout = FetchSettings::kDefaultTimeout;
    // How many channels a refresh of all channels downloads at once. Results are still applied
    // one at a time in visiting order.
    int parallelDownloads = 4;
};

// Brings channels up to date: one channel, all channels (or the due ones) and the periodic check.
// Every call is made on the thread that owns the model; downloads run on worker threads that
// work on copies and hand their results back through the observer, so that the live model is
// only ever changed on the owner's thread. Stop requests (the store's stopRequested and
// abortRequested) are honoured between channels and end every download in flight within about a
// second: after its current block, or at once while it still waits for its answer.
class RefreshEngine {
public:
    RefreshEngine(ChannelStore& store, RefreshObserver& observer, RefreshOptions options = {});
    // Stops and waits for the workers still running; their pending hand-overs must be dropped.
    ~RefreshEngine();
    RefreshEngine(const RefreshEngine&) = delete;
    RefreshEngine& operator=(const RefreshEngine&) = delete;

    // Updates the channel here and now. False, with nothing changed, for a channel without
    // address; false with state 2 and an error text when the download or the parse failed.
    // `completion` is asked for (QFM_REFRESHDONE) only after a success. A non-zero
    // `mergeOption` lets the feed's title replace the channel's.
    bool UpdateChannel(Channel& channel, int32_t mergeOption,
                       const RefreshCompletion& completion = {});

    // With `onThread`, updates the channel on a worker of its own and answers at once; such
    // workers may overlap, also on one channel. A worker that cannot start leaves the channel as
    // it was. Otherwise UpdateChannel without completion. Always true.
    bool StartChannelUpdate(Channel& channel, int32_t mergeOption, bool onThread,
                            RefreshCompletion completion = {});

    // Saves the store and read states, sets busy and starts the worker that visits the channels
    // in the order of the channels screen's rows, then every other channel in store order;
    // `refreshAll` false visits only the due ones. Either way a channel whose server said it is
    // gone, or asked for a pause not yet over, is left out. The worker clears busy and
    // stopRequested when it ends. False, with busy cleared, when no worker could be started or one
    // still runs.
    bool StartRefreshAll(bool refreshAll);

    // The periodic check: starts a refresh of the due channels when automatic updating is on,
    // nothing runs and a channel is due.
    void OnAutoUpdateTimer();

    // Whether a worker of this engine is still running.
    bool HasRunningWorkers();

private:
    struct Worker {
        std::shared_ptr<std::atomic<bool>> done;
        std::jthread thread;
    };

    FetchSettings MakeFetchSettings() const;
    void ClearStopFlagsWhenIdle();
    void ReapWorkers();
    bool Spawn(std::function<void()> body);
    void FinishRefreshAll(bool anyVisited);

    ChannelStore& store_;
    RefreshObserver& observer_;
    RefreshOptions options_;
    bool refreshAllRunning_ = false;
    std::vector<Worker> workers_;
};

} // namespace qf
