#include "sync/SyncRun.h"

#include "model/ChannelStore.h"

namespace qf {

struct SyncRun::State {
    SyncAccount account;
    SyncReport report;
    bool loginRejected = false;
};

std::unique_ptr<SyncRun> SyncRun::Prepare(ChannelStore& /*store*/, const SyncAccount& account,
                                          const FeedDate& /*now*/) {
    auto state = std::make_unique<State>();
    state->account = account;
    return std::unique_ptr<SyncRun>(new SyncRun(std::move(state)));
}

SyncRun::SyncRun(std::unique_ptr<State> state) : state_(std::move(state)) {}
SyncRun::~SyncRun() = default;

bool SyncRun::Exchange(const std::function<bool()>& /*stop*/, const SyncProgress& /*progress*/) {
    state_->report.errors.emplace_back(u"not written yet");
    return false;
}

bool SyncRun::Finish(ChannelStore& /*store*/) {
    return true;
}

const SyncReport& SyncRun::report() const {
    return state_->report;
}

bool SyncRun::loginRejected() const {
    return state_->loginRejected;
}

void QueueLocalChanges(const ChannelStore& /*store*/, const FeedDate& /*now*/) {}

} // namespace qf
