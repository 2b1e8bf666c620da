#pragma once

#include <deque>
#include <functional>
#include <mutex>

namespace qf::ui {

// Work that refresh workers hand to the main thread, in the order it was handed over. Each piece
// is announced by a wake-up message of its own, and each wake-up runs exactly one piece, so the
// work keeps its place among the other messages posted around it. The queue's own lock, rather
// than the toolkit's event queue alone, is what orders a worker's writes before the main thread's
// reads, so that race detectors see the hand-over too.
class HandOverQueue {
public:
    // `wake` posts the wake-up message; it may be called from any thread.
    explicit HandOverQueue(std::function<void()> wake) : wake_(std::move(wake)) {}

    // Any thread.
    void Post(std::function<void()> work);
    // Main thread, once per wake-up: runs the oldest piece of work still waiting.
    void RunNext();

private:
    std::function<void()> wake_;
    std::mutex mutex_;
    std::deque<std::function<void()>> pending_;
};

} // namespace qf::ui
