#pragma once

#include "net/ChannelUpdate.h"
#include "net/HttpFetcher.h"

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace qf {

class ChannelStore;
class RefreshObserver;

// The work of one refresh of all channels, run on its worker thread. Several downloads may
// overlap, but the channels are begun and their results handed to the model's owner strictly one
// after the other in visiting order, so the user sees them updated in that order. A stop request
// ends the run before the next channel; downloads already ahead of it are dropped unseen.
// No host has more than two connections of the run at a time, idle kept-alive ones included:
// the downloads ahead go to other hosts first.
class RefreshAllRun {
public:
    // `store` and `observer` are only used in the work handed to the owner.
    RefreshAllRun(std::vector<ChannelJob> jobs, const FetchSettings& settings, ChannelStore& store,
                  RefreshObserver& observer, int parallelDownloads);

    // Answers whether any channel was visited.
    bool Run();

private:
    bool StopRequested() const;
    void Download(std::size_t downloader);
    std::optional<std::size_t> TakeNextJob(std::size_t downloader, HttpFetcher& fetcher);
    std::optional<std::size_t> ChooseJob(std::size_t downloader) const;
    void SkipTakenJobs();
    ChannelResult AwaitResult(std::size_t index, HttpFetcher& ownFetcher);
    void Advance(std::size_t begun);
    void HandOverBegin(std::size_t index);
    void HandOverResult(ChannelResult result);

    // What the coordinating thread knows of each channel; the jobs themselves go to whichever
    // thread downloads them.
    struct Visit {
        const Channel* channel = nullptr;
        int32_t id = 0;
        // Channels without an address are visited without being touched.
        bool hasAddress = false;
        // Where its feed is downloaded from (see HostKey).
        std::u16string host;
    };

    std::vector<ChannelJob> jobs_;
    std::vector<Visit> visits_;
    const FetchSettings& settings_;
    ChannelStore& store_;
    RefreshObserver& observer_;
    std::size_t parallelDownloads_;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::optional<ChannelResult>> results_;
    // Which jobs a thread has taken, and the first one not taken yet.
    std::vector<bool> taken_;
    std::size_t nextJob_ = 0;
    // The host each downloader may hold a connection to (empty: none).
    std::vector<std::u16string> held_;
    // How many channels the run has begun so far.
    std::size_t begun_ = 0;
    bool quit_ = false;
};

} // namespace qf
