#include "net/OwnerQueue.h"

#include <utility>

namespace qf {

void OwnerQueue::Post(std::function<void()> work) {
    {
        const std::lock_guard lock(mutex_);
        work_.push_back(std::move(work));
    }
    arrived_.notify_one();
}

std::size_t OwnerQueue::RunPending() {
    std::deque<std::function<void()>> taken;
    {
        const std::lock_guard lock(mutex_);
        taken.swap(work_);
    }
    // Run outside the lock: a piece may hand over more work.
    for (auto& work : taken) {
        work();
    }
    return taken.size();
}

std::size_t OwnerQueue::WaitAndRun(std::chrono::milliseconds timeout) {
    {
        std::unique_lock lock(mutex_);
        arrived_.wait_for(lock, timeout, [this] { return !work_.empty(); });
    }
    return RunPending();
}

} // namespace qf
