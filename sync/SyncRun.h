#pragma once

#include "model/FeedDate.h"
#include "sync/SyncAccount.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qf {

class ChannelStore;

// What one sync did, for the user.
struct SyncReport {
    // Subscriptions that came from the server, and local channels the server now has.
    int32_t addedLocally = 0;
    int32_t addedOnServer = 0;
    // Channels removed because the server dropped them, and subscriptions dropped on the server
    // because the channel was removed here.
    int32_t removedLocally = 0;
    int32_t removedOnServer = 0;
    // Channels the server dropped that stay because they still have unread stories.
    std::vector<std::u16string> kept;
    // Read states marked on the server, and stories whose state came from the server.
    int32_t readStatesSent = 0;
    int32_t readStatesReceived = 0;
    // What went wrong, one text each; a sync with errors changed nothing here.
    std::vector<std::u16string> errors;
};

// How far a sync is: what it does now, and a count of steps done of a total (0 when unknown).
using SyncProgress = std::function<void(std::u16string_view stage, int32_t done, int32_t total)>;

// One two-way pass between the store and the account's server, in three steps so that only the
// model's owner thread touches the store:
//   Prepare (owner thread) copies the subscriptions and read states, noting local changes;
//   Exchange (any thread) does all the talking to the server;
//   Finish (owner thread) applies what came from the server and saves the store and what the
//   next sync compares against.
// A failed or stopped Exchange changes nothing here, and every local change stays queued.
class SyncRun {
public:
    // Loads the stories of channels not in memory from their cached feeds, so that every read
    // state can be compared.
    static std::unique_ptr<SyncRun> Prepare(ChannelStore& store, const SyncAccount& account,
                                            const FeedDate& now);
    ~SyncRun();
    SyncRun(const SyncRun&) = delete;
    SyncRun& operator=(const SyncRun&) = delete;

    // False when the server could not be reached, refused, or a stop came; report().errors says
    // why. `stop` is asked before and during every request.
    bool Exchange(const std::function<bool()>& stop, const SyncProgress& progress);
    // Only after a successful Exchange. False when the store or the sync state could not be
    // saved (report().errors says why).
    bool Finish(ChannelStore& store);

    const SyncReport& report() const;
    // The server refused the saved login: the user has to log in again.
    bool loginRejected() const;

private:
    struct State;
    explicit SyncRun(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

// Notes the read states changed since the last sync into the queue of local changes, with
// their time, so that they reach the server at the next sync even after a failed one. Only
// channels whose stories are in memory are looked at. Does nothing without an account.
void QueueLocalChanges(const ChannelStore& store, const FeedDate& now);

} // namespace qf
