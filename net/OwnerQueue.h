#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace qf {

// Work that other threads hand to the thread owning the model. That thread runs it one piece at
// a time, in the order it was handed over, whenever it looks: so only one thread ever changes the
// model. The command line and the tests use it where the screens post events.
class OwnerQueue {
public:
    // Any thread.
    void Post(std::function<void()> work);

    // The owner: runs every piece handed over so far; answers how many ran.
    std::size_t RunPending();
    // The owner: waits until something was handed over or `timeout` passed, then runs what is
    // pending.
    std::size_t WaitAndRun(std::chrono::milliseconds timeout);

private:
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<std::function<void()>> work_;
};

} // namespace qf
