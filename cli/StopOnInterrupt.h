#pragma once

#include <csignal>

namespace qf {
class ChannelStore;
}

namespace qf::cli {

// Ctrl+C as the stop button of a refresh: while the object lives, the first SIGINT sets the
// store's stopRequested and abortRequested, so the download in flight ends within about a second
// (also one still waiting for its answer) and the command can still save everything; a second
// one ends the program at once. One at a time.
class StopOnInterrupt {
public:
    explicit StopOnInterrupt(ChannelStore& store);
    ~StopOnInterrupt();
    StopOnInterrupt(const StopOnInterrupt&) = delete;
    StopOnInterrupt& operator=(const StopOnInterrupt&) = delete;

    bool interrupted() const;

private:
    struct sigaction previous_ {};
};

} // namespace qf::cli
