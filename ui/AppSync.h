#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace qf {
class Channel;
class ChannelStore;
class RefreshEngine;
class SyncRun;
} // namespace qf

namespace qf::ui {

class AppDialogs;
class AppRefresh;
class AppScreens;

// "Sync Now": one pass with the sync account's server, its talking done on a worker thread while
// the progress control shows how far it is, the way a refresh runs. The store stays the main
// thread's: the pass copies what it needs before the worker starts and applies the answer after
// the worker handed it back. While it runs the store counts as busy, so that no refresh starts
// and every stop a refresh obeys stops the sync too.
class AppSync {
public:
    struct Parts {
        ChannelStore& store;
        AppScreens& screens;
        AppRefresh& refresh;
        RefreshEngine& engine;
        const AppDialogs& dialogs;
    };
    explicit AppSync(const Parts& parts);
    // Stops a sync still running and waits for its worker.
    ~AppSync();
    AppSync(const AppSync&) = delete;
    AppSync& operator=(const AppSync&) = delete;

    // Starts a sync, or tells the user why none starts.
    void Start();
    bool running() const { return run_ != nullptr; }
    // Stops the sync under way and waits for its worker; what it exchanged is not applied, and
    // the local changes stay queued for the next one.
    void StopAndWait();

private:
    // A channel as it was before the pass: the address alone could be a new channel's.
    using ChannelMark = std::pair<const Channel*, int32_t>;

    bool StopAsked() const;
    void Exchange(SyncRun& run);
    void ShowProgress(const std::u16string& stage, int32_t done, int32_t total);
    void Finished(bool exchanged);
    // Channels the pass removed are dropped by every screen; the rest show their new counts.
    void FollowChanges(const std::vector<ChannelMark>& before);
    void Report(bool applied);
    std::vector<ChannelMark> Marks() const;

    ChannelStore& store_;
    AppScreens& screens_;
    AppRefresh& refresh_;
    RefreshEngine& engine_;
    const AppDialogs& dialogs_;
    // The pass under way, from Start until its result is handled or it is stopped; the worker
    // uses it only between its start and its hand-over.
    std::unique_ptr<SyncRun> run_;
    std::jthread worker_;
    // Asked by the worker: set when the program ends.
    std::atomic<bool> quitting_{false};
};

} // namespace qf::ui
