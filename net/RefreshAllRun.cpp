#include "net/RefreshAllRun.h"

#include "net/RefreshObserver.h"

#include <algorithm>
#include <memory>
#include <thread>
#include <utility>

namespace qf {

RefreshAllRun::RefreshAllRun(std::vector<ChannelJob> jobs, const FetchSettings& settings,
                             ChannelStore& store, RefreshObserver& observer, int parallelDownloads)
    : jobs_(std::move(jobs)), settings_(settings), store_(store), observer_(observer),
      parallelDownloads_(static_cast<std::size_t>(std::max(parallelDownloads, 1))),
      results_(jobs_.size()) {
    visits_.reserve(jobs_.size());
    for (const auto& job : jobs_) {
        visits_.push_back({job.channel, job.id, !job.url.empty()});
    }
}

bool RefreshAllRun::StopRequested() const {
    return settings_.stopRequested != nullptr && settings_.stopRequested->load() != 0;
}

bool RefreshAllRun::Run() {
    std::vector<std::jthread> downloaders;
    const std::size_t count = std::min(parallelDownloads_, jobs_.size());
    for (std::size_t i = 0; i < count; ++i) {
        downloaders.emplace_back([this] { Download(); });
    }
    HttpFetcher ownFetcher;
    bool anyVisited = false;
    for (std::size_t index = 0; index < jobs_.size() && !StopRequested(); ++index) {
        anyVisited = true;
        if (visits_[index].hasAddress) {
            HandOverBegin(index);
        }
        // A channel is begun before its download may start, and the ones ahead of it only
        // download while it is the current one.
        Advance(index + 1);
        if (visits_[index].hasAddress) {
            HandOverResult(AwaitResult(index, ownFetcher));
        }
    }
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
    }
    changed_.notify_all();
    return anyVisited;
}

void RefreshAllRun::Download() {
    HttpFetcher fetcher;
    while (const auto index = TakeNextJob()) {
        ChannelResult result =
            FetchChannel(std::move(jobs_[*index]), fetcher, settings_, observer_);
        {
            const std::lock_guard lock(mutex_);
            results_[*index] = std::move(result);
        }
        changed_.notify_all();
    }
}

std::optional<std::size_t> RefreshAllRun::TakeNextJob() {
    std::unique_lock lock(mutex_);
    for (;;) {
        // Nothing is downloaded before the run has begun its first channel, and then no more
        // than the current channel and a few after it, so that finished downloads do not pile
        // up. No new channel is taken once a stop was asked for.
        changed_.wait(lock, [this] {
            return quit_ || nextJob_ >= jobs_.size() ||
                   (begun_ > 0 && nextJob_ + 1 < begun_ + parallelDownloads_);
        });
        if (quit_ || nextJob_ >= jobs_.size() || StopRequested()) {
            return std::nullopt;
        }
        const std::size_t index = nextJob_++;
        if (visits_[index].hasAddress) {
            return index;
        }
    }
}

ChannelResult RefreshAllRun::AwaitResult(std::size_t index, HttpFetcher& ownFetcher) {
    std::unique_lock lock(mutex_);
    if (nextJob_ <= index) {
        // The downloaders stopped taking work (a stop came after this channel was begun), so the
        // channel is downloaded here; the download itself then stops before it asks anything.
        nextJob_ = index + 1;
        lock.unlock();
        return FetchChannel(std::move(jobs_[index]), ownFetcher, settings_, observer_);
    }
    changed_.wait(lock, [this, index] { return results_[index].has_value(); });
    ChannelResult result = std::move(*results_[index]);
    results_[index].reset();
    return result;
}

void RefreshAllRun::Advance(std::size_t begun) {
    {
        const std::lock_guard lock(mutex_);
        begun_ = begun;
    }
    changed_.notify_all();
}

void RefreshAllRun::HandOverBegin(std::size_t index) {
    const Visit& visit = visits_[index];
    observer_.HandOver(
        [&store = store_, &observer = observer_, channel = visit.channel, id = visit.id] {
            if (Channel* live = FindLiveChannel(store, channel, id)) {
                BeginChannelUpdate(*live, observer);
            }
        });
}

void RefreshAllRun::HandOverResult(ChannelResult result) {
    auto shared = std::make_shared<ChannelResult>(std::move(result));
    observer_.HandOver([&store = store_, &observer = observer_, shared] {
        ApplyChannelResult(store, observer, std::move(*shared), {});
    });
}

} // namespace qf
