#include "cli/StopOnInterrupt.h"

#include "model/ChannelStore.h"

#include <atomic>

namespace qf::cli {

namespace {

// A signal handler may only touch lock-free atomics.
std::atomic<RefreshFlags*> gRefresh{nullptr};
std::atomic<int> gInterrupts{0};
static_assert(std::atomic<RefreshFlags*>::is_always_lock_free &&
              std::atomic<int>::is_always_lock_free);

void OnInterrupt(int signal) {
    if (gInterrupts.fetch_add(1) > 0) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
        return;
    }
    if (RefreshFlags* refresh = gRefresh.load()) {
        refresh->RequestAbort();
    }
}

} // namespace

StopOnInterrupt::StopOnInterrupt(ChannelStore& store) {
    gRefresh = &store.refresh();
    gInterrupts = 0;
    struct sigaction action {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &previous_);
}

StopOnInterrupt::~StopOnInterrupt() {
    sigaction(SIGINT, &previous_, nullptr);
    gRefresh = nullptr;
}

bool StopOnInterrupt::interrupted() const {
    return gInterrupts.load() > 0;
}

} // namespace qf::cli
