#include "net/RefreshEngine.h"

#include "model/ChannelListOrder.h"
#include "model/ChannelStore.h"
#include "net/ChannelUpdate.h"
#include "net/ConnectionManager.h"
#include "net/RefreshAllRun.h"
#include "store/ChannelStoreFile.h"

#include <algorithm>
#include <system_error>
#include <unordered_set>
#include <utility>

namespace qf {

namespace {

// Establishes the process's connection for `url` unless one is up; true when this call did.
bool EnsureConnection(std::u16string_view url) {
    auto& connection = ProcessConnectionHandle();
    return !IsConnected(connection.load()) && EstablishConnection(url, &connection);
}

void ReleaseIfEstablished(bool established) {
    if (established) {
        ReleaseConnection(&ProcessConnectionHandle());
    }
}

// The channels a refresh of all channels visits: the channels screen's rows in order, then every
// other channel in store order; each once.
std::vector<Channel*> VisitOrder(const ChannelStore& store) {
    std::vector<Channel*> order = ChannelListOrder(store);
    std::unordered_set<const Channel*> seen(order.begin(), order.end());
    for (const auto& category : store.categories()) {
        for (const auto& channel : category->channels()) {
            if (channel && seen.insert(channel.get()).second) {
                order.push_back(channel.get());
            }
        }
    }
    return order;
}

} // namespace

bool IsChannelDue(const ChannelStore& store, const Channel& channel) {
    return store.IsChannelDue(channel);
}

bool IsStoreDue(const ChannelStore& store) {
    return store.IsAutoUpdateDue();
}

RefreshEngine::RefreshEngine(ChannelStore& store, RefreshObserver& observer, RefreshOptions options)
    : store_(store), observer_(observer), options_(options) {}

RefreshEngine::~RefreshEngine() {
    if (HasRunningWorkers()) {
        store_.refresh().RequestAbort();
    }
    workers_.clear();
}

FetchSettings RefreshEngine::MakeFetchSettings() const {
    FetchSettings settings;
    settings.tolerantCertificates = store_.settings().tolerantCertificates() != 0;
    settings.timeout = options_.timeout;
    settings.stopRequested = &store_.refresh().stopFlag();
    settings.abortRequested = &store_.refresh().abortFlag();
    return settings;
}

void RefreshEngine::ClearStopFlagsWhenIdle() {
    // A stop meant for a refresh still running must reach it; otherwise a new refresh starts
    // afresh, also after the stop button, whose abort flag nothing else ever clears.
    if (!HasRunningWorkers()) {
        store_.refresh().ClearStopAndAbort();
    }
}

void RefreshEngine::ReapWorkers() {
    std::erase_if(workers_, [](const Worker& worker) { return worker.done->load(); });
}

bool RefreshEngine::HasRunningWorkers() {
    ReapWorkers();
    return !workers_.empty();
}

bool RefreshEngine::Spawn(std::function<void()> body) {
    ReapWorkers();
    auto done = std::make_shared<std::atomic<bool>>(false);
    try {
        workers_.push_back({done, std::jthread([body = std::move(body), done] {
                                body();
                                done->store(true);
                            })});
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

bool RefreshEngine::UpdateChannel(Channel& channel, int32_t mergeOption,
                                  const RefreshCompletion& completion) {
    if (channel.xmlUrl().empty()) {
        return false;
    }
    const bool established = EnsureConnection(channel.xmlUrl().view());
    ChannelJob job = MakeChannelJob(store_, channel, mergeOption);
    BeginChannelUpdate(channel, observer_);
    HttpFetcher fetcher;
    ChannelResult result = FetchChannel(std::move(job), fetcher, MakeFetchSettings(), observer_);
    ReleaseIfEstablished(established);
    return ApplyChannelResult(store_, observer_, std::move(result), completion);
}

bool RefreshEngine::StartChannelUpdate(Channel& channel, int32_t mergeOption, bool onThread,
                                       RefreshCompletion completion) {
    if (!onThread) {
        UpdateChannel(channel, mergeOption);
        return true;
    }
    if (channel.xmlUrl().empty()) {
        return true;
    }
    ClearStopFlagsWhenIdle();
    auto job = std::make_shared<ChannelJob>(MakeChannelJob(store_, channel, mergeOption));
    const int32_t previousState = job->previousState;
    BeginChannelUpdate(channel, observer_);
    const bool started =
        Spawn([this, job, settings = MakeFetchSettings(), completion = std::move(completion)] {
            const bool established = EnsureConnection(job->url);
            HttpFetcher fetcher;
            auto result = std::make_shared<ChannelResult>(
                FetchChannel(std::move(*job), fetcher, settings, observer_));
            ReleaseIfEstablished(established);
            observer_.HandOver([this, result, completion] {
                ApplyChannelResult(store_, observer_, std::move(*result), completion);
            });
        });
    if (!started) {
        AbandonChannelUpdate(channel, previousState, observer_);
    }
    return true;
}

bool RefreshEngine::StartRefreshAll(bool refreshAll) {
    if (refreshAllRunning_) {
        return false;
    }
    store_.refresh().Start();
    store_.refresh().ClearStopAndAbort();
    SaveAll(store_);
    std::vector<ChannelJob> jobs;
    const FeedDate now = FeedDate::NowUtc();
    for (Channel* channel : VisitOrder(store_)) {
        // Every channel is asked, but not one whose server asked to be left alone.
        const bool visit =
            refreshAll ? !channel->server().KeepsAway(now) : IsChannelDue(store_, *channel);
        if (visit) {
            jobs.push_back(MakeChannelJob(store_, *channel, 0));
        }
    }
    const auto count = static_cast<int32_t>(jobs.size());
    for (int32_t i = 0; i < count; ++i) {
        jobs[static_cast<std::size_t>(i)].position = i + 1;
        jobs[static_cast<std::size_t>(i)].count = count;
    }
    auto run = std::make_shared<std::vector<ChannelJob>>(std::move(jobs));
    const bool started = Spawn([this, run, settings = MakeFetchSettings()] {
        const bool established = EnsureConnection({});
        RefreshAllRun work(std::move(*run), settings, store_, observer_,
                           options_.parallelDownloads);
        const bool anyVisited = work.Run();
        observer_.HandOver([this, anyVisited] { FinishRefreshAll(anyVisited); });
        ReleaseIfEstablished(established);
    });
    if (!started) {
        store_.refresh().Finish();
        return false;
    }
    refreshAllRunning_ = true;
    return true;
}

void RefreshEngine::FinishRefreshAll(bool anyVisited) {
    refreshAllRunning_ = false;
    store_.refresh().Finish();
    if (anyVisited && IsStoreDue(store_)) {
        store_.SetUpdateDate(FeedDate::NowUtc());
    }
    observer_.RefreshAllFinished();
}

void RefreshEngine::OnAutoUpdateTimer() {
    if (store_.autoUpdate() != 0 && !store_.refresh().busy() && store_.HasChannelDue()) {
        StartRefreshAll(false);
    }
}

} // namespace qf
