#pragma once

#include "model/Channel.h"
#include "net/RefreshObserver.h"
#include "platform/TempFile.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace qf {

class ChannelStore;
class HttpFetcher;
struct FetchSettings;

// The update of one channel, cut where the work moves between threads. The thread that owns the
// model copies what a worker needs (MakeChannelJob) and marks the channel as being updated
// (BeginChannelUpdate); a worker downloads and parses into a private channel (FetchChannel) and
// never touches the live model; the owner applies the outcome (ApplyChannelResult).

struct ChannelJob {
    // Names the live channel for the owner; a worker never follows it.
    const Channel* channel = nullptr;
    int32_t id = 0;
    std::u16string title;
    std::u16string url;
    std::u16string userName;
    std::u16string password;
    std::u16string volume;
    WString cacheFile;
    // The validators of the cached feed, sent when that file is still there.
    std::u16string etag;
    std::u16string lastModified;
    bool takeTitle = false;
    // The channel's state before this update began, put back when the update ends without an
    // outcome.
    int32_t previousState = kChannelIdle;
    // The channel's feed fields without its stories; the feed is parsed into it.
    std::unique_ptr<Channel> snapshot;
    // For progress: the place among the channels of a refresh of all channels, and their number.
    int32_t position = 0;
    int32_t count = 0;
};

enum class UpdateOutcome {
    kDownloadFailed,
    kParseFailed,
    kUpdated,
    // The server said the cached feed is current: nothing was downloaded or parsed.
    kNotModified,
    // A stop ended the download before its answer came: neither a success nor a failure.
    kStopped,
};

struct ChannelResult {
    const Channel* channel = nullptr;
    int32_t id = 0;
    // The address asked for: what its server said is kept only while the channel still has it.
    std::u16string url;
    std::u16string volume;
    UpdateOutcome outcome = UpdateOutcome::kDownloadFailed;
    int32_t errorCode = 0;
    int32_t previousState = kChannelIdle;
    bool takeTitle = false;
    // The channel as parsed from the download, stories included.
    std::unique_ptr<Channel> parsed;
    // Downloads waiting to replace the cached feed and the logo; none when the fetcher left the
    // cached feed as it was (ftp and file addresses count as up to date).
    std::optional<TempFile> feed;
    std::u16string feedPath;
    std::optional<TempFile> image;
    std::u16string imagePath;
    // Whether an answer came, and what its server said (see ServerState); the validators are
    // those to keep after a success.
    bool answered = false;
    ServerState server;
    // Where the feed now lives when it was reached through permanent redirects only.
    std::u16string movedTo;
};

// Owner thread. Gives the channel its cached feed name when it has none yet (-> `cacheFile`). A
// non-zero `mergeOption` lets the feed's own title replace the channel's.
ChannelJob MakeChannelJob(const ChannelStore& store, Channel& channel, int32_t mergeOption);

// Owner thread: the channel shows that it is being updated.
void BeginChannelUpdate(Channel& channel, RefreshObserver& observer);

// Owner thread: an update that ends without an outcome (stopped before its answer, or its worker
// never started) puts the channel back in the state it had before; nothing else was touched.
void AbandonChannelUpdate(Channel& channel, int32_t previousState, RefreshObserver& observer);

// Worker thread: downloads the feed into a file beside the cached feed and parses it, then
// fetches the logo the feed names. Only the job's own copies are read.
ChannelResult FetchChannel(ChannelJob job, HttpFetcher& fetcher, const FetchSettings& settings,
                           RefreshObserver& observer);

// Owner thread: the live channel named by the result, when the store still holds it.
Channel* FindLiveChannel(const ChannelStore& store, const Channel* channel, int32_t id);

// Owner thread: applies the outcome to the live channel, one result at a time. On success the
// read states of the stories it had (read from its cached feed when they were not in memory) are
// carried over, the download replaces the cached feed, the stories are swapped, and `completion`
// (when set) is asked for; a feed that moved for good takes its new address. "Not modified"
// counts as a success that keeps cached feed and stories as they are. A failure records its error
// text and keeps stories and cached feed; a stopped update leaves the channel as it was before it
// began. What the server said (validators, pauses, freshness, gone) is kept with the channel.
// Answers whether the channel was updated; false also when the store no longer holds it.
bool ApplyChannelResult(ChannelStore& store, RefreshObserver& observer, ChannelResult result,
                        const RefreshCompletion& completion);

} // namespace qf
