#include "net/RefreshAllRun.h"

#include "net/RefreshObserver.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>
#include <utility>

namespace qf {

namespace {

// The connections one host may have from a run at a time.
constexpr std::size_t kConnectionsPerHost = 2;
// How far beyond the current channel downloaders may look for a host with room, in multiples
// of their number; so that finished downloads do not pile up.
constexpr std::size_t kLookAhead = 4;
// How often a channel waiting for its download looks whether a stop was asked for.
constexpr auto kStopPoll = std::chrono::milliseconds(100);

} // namespace

RefreshAllRun::RefreshAllRun(std::vector<ChannelJob> jobs, const FetchSettings& settings,
                             ChannelStore& store, RefreshObserver& observer, int parallelDownloads)
    : jobs_(std::move(jobs)), settings_(settings), store_(store), observer_(observer),
      parallelDownloads_(static_cast<std::size_t>(std::max(parallelDownloads, 1))),
      results_(jobs_.size()), taken_(jobs_.size(), false) {
    visits_.reserve(jobs_.size());
    for (const auto& job : jobs_) {
        visits_.push_back({job.channel, job.id, !job.url.empty(), HostKey(job.url)});
        // Nothing to download for a channel without an address.
        taken_[visits_.size() - 1] = job.url.empty();
    }
    SkipTakenJobs();
}

void RefreshAllRun::SkipTakenJobs() {
    while (nextJob_ < jobs_.size() && taken_[nextJob_]) {
        ++nextJob_;
    }
}

bool RefreshAllRun::StopRequested() const {
    return settings_.stopRequested != nullptr && settings_.stopRequested->load();
}

bool RefreshAllRun::Run() {
    std::vector<std::jthread> downloaders;
    const std::size_t count = std::min(parallelDownloads_, jobs_.size());
    held_.assign(count, {});
    for (std::size_t i = 0; i < count; ++i) {
        downloaders.emplace_back([this, i] { Download(i); });
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

void RefreshAllRun::Download(std::size_t downloader) {
    HttpFetcher fetcher;
    while (const auto index = TakeNextJob(downloader, fetcher)) {
        ChannelResult result =
            FetchChannel(std::move(jobs_[*index]), fetcher, settings_, observer_);
        {
            const std::lock_guard lock(mutex_);
            results_[*index] = std::move(result);
            // The fetcher keeps the connection of its last request, a logo's or a redirect's
            // target's perhaps.
            held_[downloader] = HostKey(fetcher.Url().host);
        }
        changed_.notify_all();
    }
}

std::optional<std::size_t> RefreshAllRun::ChooseJob(std::size_t downloader) const {
    // Nothing is downloaded before the run has begun its first channel, and then only the
    // current channel and a few after it.
    if (begun_ == 0) {
        return std::nullopt;
    }
    const std::size_t end = std::min(jobs_.size(), begun_ - 1 + parallelDownloads_ * kLookAhead);
    std::optional<std::size_t> best;
    std::size_t bestOthers = kConnectionsPerHost;
    for (std::size_t index = nextJob_; index < end; ++index) {
        if (taken_[index]) {
            continue;
        }
        const std::u16string& host = visits_[index].host;
        std::size_t others = 0;
        for (std::size_t other = 0; other < held_.size(); ++other) {
            others += other != downloader && !host.empty() && held_[other] == host ? 1 : 0;
        }
        // The current channel goes first when its host has room; then hosts nobody is on.
        if (others < bestOthers) {
            best = index;
            bestOthers = others;
        }
        if (best && (bestOthers == 0 || *best + 1 == begun_)) {
            break;
        }
    }
    return best;
}

std::optional<std::size_t> RefreshAllRun::TakeNextJob(std::size_t downloader,
                                                      HttpFetcher& fetcher) {
    std::unique_lock lock(mutex_);
    // No new channel is taken once a stop was asked for.
    std::optional<std::size_t> index;
    changed_.wait(lock, [&] {
        index = ChooseJob(downloader);
        return quit_ || nextJob_ >= jobs_.size() || index.has_value();
    });
    if (quit_ || nextJob_ >= jobs_.size() || StopRequested()) {
        return std::nullopt;
    }
    taken_[*index] = true;
    SkipTakenJobs();
    const std::u16string& host = visits_[*index].host;
    if (held_[downloader] != host) {
        // The connection to the old host is closed before the new host counts this thread, so
        // that no host ever sees more than its share.
        fetcher.CloseSession();
        held_[downloader] = host;
    }
    return index;
}

ChannelResult RefreshAllRun::AwaitResult(std::size_t index, HttpFetcher& ownFetcher) {
    std::unique_lock lock(mutex_);
    // A channel may wait for room on its host. Once a stop is asked for the downloaders take no
    // more work, and no one says so: the stop flag is looked at again every so often.
    const auto abandoned = [this, index] { return !taken_[index] && StopRequested(); };
    while (!changed_.wait_for(lock, kStopPoll,
                              [&] { return results_[index].has_value() || abandoned(); })) {
    }
    if (!results_[index].has_value()) {
        // The channel is downloaded here; the download itself stops before it asks anything.
        taken_[index] = true;
        SkipTakenJobs();
        lock.unlock();
        return FetchChannel(std::move(jobs_[index]), ownFetcher, settings_, observer_);
    }
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
