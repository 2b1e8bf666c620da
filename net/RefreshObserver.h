#pragma once

#include "model/Channel.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace qf {

// The message through which a successful single-channel update has its completion run on the
// thread that owns the model.
inline constexpr int32_t QFM_REFRESHDONE = 0x8130;

// Run on the model's owner thread once a channel was updated successfully.
using RefreshCompletion = std::function<void(Channel& channel)>;

// How far a refresh is, for a progress line.
struct RefreshProgress {
    int32_t channelId = 0;
    std::u16string title;
    // What is being done: "downloading channel file", "parsing channel file", ...
    std::u16string_view stageText;
    int64_t bytesSoFar = 0;
    // Negative when the server did not say.
    int64_t totalBytes = -1;
    // The channel's place among the channels a refresh of all channels visits (from 1) and their
    // number; both 0 for a single channel.
    int32_t position = 0;
    int32_t count = 0;
};

// What the refresh engine needs from the screens, or from whatever stands in for them. Apart from
// HandOver and ReportProgress, every call comes on the thread that owns the model.
class RefreshObserver {
public:
    virtual ~RefreshObserver() = default;

    // Any thread: runs `work` on the thread that owns the model, after everything handed over
    // before it. Work still pending when the engine goes away must be dropped, not run.
    virtual void HandOver(std::function<void()> work) = 0;

    // Any thread, several at once when downloads overlap: progress of one channel.
    virtual void ReportProgress(const RefreshProgress& progress) = 0;

    // The channel's row should show its current state and counts.
    virtual void RedrawChannel(const Channel& channel) = 0;

    // The channel's update ended without an outcome (a stop came before its answer, or its worker
    // could not start) and the channel is as it was before. By default its row is redrawn.
    virtual void UpdateAbandoned(const Channel& channel) { RedrawChannel(channel); }

    // A successful single-channel update asks for `completion` to run as QFM_REFRESHDONE does.
    // By default it runs at once.
    // Taken by value: an override keeps it to run later on another thread.
    // NOLINTNEXTLINE(performance-unnecessary-value-param)
    virtual void PostRefreshDone(Channel& channel, RefreshCompletion completion) {
        completion(channel);
    }

    // A refresh replaced the channel's stories with new ones. A screen that may still show the
    // old ones keeps them until it has filled its list anew; by default they go at once.
    // NOLINTNEXTLINE(performance-unnecessary-value-param): an override takes the items over.
    virtual void RetireItems(Channel& /*channel*/, Channel::ItemList /*items*/) {}

    // A refresh of all channels has ended, after its last channel was applied.
    virtual void RefreshAllFinished() {}
};

} // namespace qf
