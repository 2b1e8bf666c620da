#pragma once

#include <atomic>

namespace qf {

// The flags that a refresh shares between threads, with who may change what:
// - the thread that owns the store starts and finishes refreshes and clears old stop requests;
// - anyone (the stop button, the menu, the interrupt handler of the command line) asks for a stop;
// - the workers and the downloads in flight only read.
// Every operation is a few lock-free stores, so an interrupt handler may ask for a stop.
class RefreshFlags {
public:
    static_assert(std::atomic<bool>::is_always_lock_free);

    bool busy() const { return busy_; }
    bool stopRequested() const { return stopRequested_; }
    bool abortRequested() const { return abortRequested_; }

    // A refresh begins: busy, and a stop asked for before it no longer counts.
    void Start() {
        busy_ = true;
        stopRequested_ = false;
    }
    // The refresh ended, however: not busy, no stop pending.
    void Finish() {
        busy_ = false;
        stopRequested_ = false;
    }
    // Forgets a stop request, so that the next refresh is not stopped by an old one.
    void ClearStop() { stopRequested_ = false; }
    // Forgets a stop request and the abort of the downloads in flight, which nothing else clears.
    void ClearStopAndAbort() {
        stopRequested_ = false;
        abortRequested_ = false;
    }

    // The refresh stops before its next channel.
    void RequestStop() noexcept { stopRequested_ = true; }
    // The refresh stops before its next channel, and the downloads in flight end too.
    void RequestAbort() noexcept {
        stopRequested_ = true;
        abortRequested_ = true;
    }

    // For a download's progress poll, which reads the flags while the transfer runs.
    const std::atomic<bool>& stopFlag() const { return stopRequested_; }
    const std::atomic<bool>& abortFlag() const { return abortRequested_; }

private:
    std::atomic<bool> busy_{false};
    std::atomic<bool> stopRequested_{false};
    std::atomic<bool> abortRequested_{false};
};

} // namespace qf
