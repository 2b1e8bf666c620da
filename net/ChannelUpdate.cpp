#include "net/ChannelUpdate.h"

#include "model/CachedFileNames.h"
#include "model/ChannelStore.h"
#include "model/DataFolder.h"
#include "net/HttpFetcher.h"
#include "net/ServerTimes.h"
#include "parse/FeedFile.h"
#include "parse/ReadState.h"
#include "platform/Files.h"
#include "platform/StringTable.h"
#include "platform/Text.h"
#include "store/CachedFeeds.h"

#include <algorithm>
#include <utility>

namespace qf {

namespace {

constexpr int32_t kStatusGone = 410;

// The fields a feed fills, copied so that parsing into the copy acts as parsing into the channel
// would: what the feed does not mention keeps the channel's value.
std::unique_ptr<Channel> FeedFieldsOf(const Channel& channel) {
    auto copy = std::make_unique<Channel>();
    copy->CopyFrom(channel, false);
    copy->SetCacheFile(channel.cacheFile());
    copy->SetEncoding(channel.encoding());
    copy->SetCodePage(channel.codePage());
    copy->SetFeedType(channel.feedType());
    copy->SetLastBuildDate(channel.lastBuildDate());
    copy->image() = channel.image();
    return copy;
}

// Hands the fields a feed fills, stories included, from the parsed copy to the live channel.
// The live channel's stories come back.
Channel::ItemList TakeFeedFields(Channel& live, Channel& parsed, bool takeTitle) {
    if (takeTitle) {
        live.SetTitle(parsed.title());
    }
    live.SetEncoding(parsed.encoding());
    live.SetCodePage(parsed.codePage());
    live.SetFeedType(parsed.feedType());
    live.SetLastBuildDate(parsed.lastBuildDate());
    live.image() = parsed.image();
    Channel::ItemList old = std::exchange(live.items(), std::move(parsed.items()));
    // The counts as parsing into the channel sets them, so a feed without stories keeps the story
    // count the channel showed.
    live.SetItemCount(parsed.itemCount());
    live.SetNewItemCount(parsed.newItemCount());
    return old;
}

class ProgressReporter {
public:
    ProgressReporter(const ChannelJob& job, RefreshObserver& observer) : observer_(observer) {
        progress_.channelId = job.id;
        progress_.title = job.title;
        progress_.position = job.position;
        progress_.count = job.count;
    }

    void Stage(int stringId) {
        progress_.stageText = LoadString(stringId);
        progress_.bytesSoFar = 0;
        progress_.totalBytes = kUnknownLength;
        observer_.ReportProgress(progress_);
    }

    ProgressCallback Bytes() {
        return [this](int32_t, int32_t total, int32_t soFar) {
            progress_.totalBytes = total;
            progress_.bytesSoFar = soFar;
            observer_.ReportProgress(progress_);
        };
    }

private:
    RefreshObserver& observer_;
    RefreshProgress progress_;
};

// Downloads the logo beside its cached copy; whatever goes wrong is ignored.
void FetchImage(const ChannelJob& job, const Channel& parsed, HttpFetcher& fetcher,
                const FetchSettings& settings, ChannelResult& result) {
    const ChannelImage& image = parsed.image();
    if (image.localFile().isNull() || image.localFile().empty()) {
        return;
    }
    const auto path = PrepareDownloadPath(job.volume, image.localFile());
    auto temp = path ? TempFile::CreateBeside(*path) : std::nullopt;
    if (!temp) {
        return;
    }
    if (fetcher.Download(settings, image.url().view(), temp->path(), job.userName, job.password) &&
        !fetcher.NothingFetched()) {
        result.image = std::move(temp);
        result.imagePath = *path;
    }
}

// The cached feed of the channel as it was before this update, or nothing.
Channel::ItemList StoredItems(const Channel& live, std::u16string_view volume) {
    Channel scratch;
    scratch.CopyFrom(live, false);
    scratch.SetCacheFile(live.cacheFile());
    if (!LoadCachedFeed(scratch, volume)) {
        return {};
    }
    return std::move(scratch.items());
}

void RecordFailure(Channel& live, RefreshObserver& observer, const ChannelResult& result) {
    live.SetState(kChannelFailed);
    observer.RedrawChannel(live);
    live.SetHasErrors(1);
    if (result.outcome == UpdateOutcome::kDownloadFailed) {
        live.SetErrorTextWithCode(kStrDownloadFailed, result.errorCode, true);
    } else {
        live.SetErrorTextFromString(kStrParseFailed, true);
    }
}

// A header's text, null when the answer has none (or an empty one).
WString HeaderText(const ResponseHead& answer, std::string_view name) {
    const auto value = answer.Header(name);
    return value && !value->empty() ? WString(Utf8ToUtf16(*value)) : WString();
}

// Notes what the answer of the feed's download said, for the owner to keep.
void NoteAnswer(const HttpFetcher& fetcher, const ChannelJob& job, ChannelResult& result) {
    const ResponseHead& answer = fetcher.Answer();
    result.answered = answer.status != 0;
    if (!result.answered) {
        return;
    }
    const FeedDate now = FeedDate::NowUtc();
    ServerState& server = result.server;
    server.notBefore = BackOffEnd(answer, now);
    server.freshUntil = FreshnessEnd(answer, now);
    server.gone = answer.status == kStatusGone;
    server.notModified = fetcher.NotModified();
    server.etag = HeaderText(answer, "ETag");
    server.lastModified = HeaderText(answer, "Last-Modified");
    if (server.notModified) {
        // A 304 need not repeat the validators; those sent still describe the cached feed.
        if (server.etag.isNull() && !job.etag.empty()) {
            server.etag = WString(job.etag);
        }
        if (server.lastModified.isNull() && !job.lastModified.empty()) {
            server.lastModified = WString(job.lastModified);
        }
        return;
    }
    if (fetcher.RedirectedTo().empty()) {
        return;
    }
    if (fetcher.OnlyPermanentRedirects()) {
        result.movedTo = fetcher.RedirectedTo();
    } else {
        // Validators of another address than the channel's would be sent to the wrong one.
        server.etag = WString();
        server.lastModified = WString();
    }
}

// Keeps what the server said with the live channel, while it still has the address asked for.
void KeepServerState(Channel& live, const ChannelResult& result) {
    live.server().notModified = result.server.notModified;
    if (!result.answered || live.xmlUrl().str() != result.url) {
        return;
    }
    const bool success =
        result.outcome == UpdateOutcome::kUpdated || result.outcome == UpdateOutcome::kNotModified;
    if (!success) {
        // A page that is no feed (a login portal) teaches nothing about the feed's address.
        live.server().notBefore = result.server.notBefore;
        live.server().gone = live.server().gone || result.server.gone;
        return;
    }
    if (!result.movedTo.empty()) {
        live.SetXmlUrl(WString(result.movedTo));
    }
    live.server() = result.server;
}

void MarkUpdated(Channel& live, RefreshObserver& observer) {
    live.SetHasErrors(0);
    live.SetUpdateTime(FeedDate::NowUtc());
    live.SetState(kChannelIdle);
    observer.RedrawChannel(live);
}

} // namespace

ChannelJob MakeChannelJob(const ChannelStore& store, Channel& channel, int32_t mergeOption) {
    if (channel.cacheFile().isNull()) {
        channel.SetCacheFile(WString(FeedFileName(channel.id())));
    }
    ChannelJob job;
    job.channel = &channel;
    job.id = channel.id();
    job.title = channel.title().str();
    job.url = channel.xmlUrl().str();
    job.userName = channel.userName().str();
    job.password = channel.password().str();
    job.volume = store.settings().storageVolume().str();
    job.cacheFile = channel.cacheFile();
    job.etag = channel.server().etag.str();
    job.lastModified = channel.server().lastModified.str();
    job.takeTitle = mergeOption != 0;
    job.previousState = channel.state();
    job.snapshot = FeedFieldsOf(channel);
    return job;
}

void BeginChannelUpdate(Channel& channel, RefreshObserver& observer) {
    channel.SetState(kChannelUpdating);
    observer.RedrawChannel(channel);
}

void AbandonChannelUpdate(Channel& channel, int32_t previousState, RefreshObserver& observer) {
    channel.SetState(previousState);
    observer.UpdateAbandoned(channel);
}

ChannelResult FetchChannel(ChannelJob job, HttpFetcher& fetcher, const FetchSettings& settings,
                           RefreshObserver& observer) {
    ChannelResult result;
    result.channel = job.channel;
    result.id = job.id;
    result.url = job.url;
    result.volume = job.volume;
    result.takeTitle = job.takeTitle;
    result.previousState = job.previousState;
    ProgressReporter progress(job, observer);
    progress.Stage(kStrStageDownloadFeed);

    const auto feedPath = PrepareDownloadPath(job.volume, job.cacheFile);
    auto temp = feedPath ? TempFile::CreateBeside(*feedPath) : std::nullopt;
    // Without a file of its own the download still runs, and what it left is what gets parsed.
    const std::u16string target = temp ? temp->path() : feedPath.value_or(u"");
    fetcher.OpenSession(settings);
    // Without the cached feed a "not modified" would leave nothing to show: ask unconditionally.
    const bool cached = feedPath && FileExists(*feedPath);
    const Validators validators = cached ? Validators{job.etag, job.lastModified} : Validators{};
    const bool downloaded = fetcher.Download(settings, job.url, target, job.userName, job.password,
                                             progress.Bytes(), validators);
    NoteAnswer(fetcher, job, result);
    if (!downloaded) {
        result.errorCode = fetcher.ErrorCode();
        if (fetcher.StoppedBeforeAnswer()) {
            result.outcome = UpdateOutcome::kStopped;
        }
        return result;
    }
    if (fetcher.NotModified()) {
        result.outcome = UpdateOutcome::kNotModified;
        return result;
    }
    // ftp and file addresses leave the cached feed as it is, and that is what is read.
    const bool untouched = fetcher.NothingFetched();
    progress.Stage(kStrStageParseFeed);
    result.parsed = std::move(job.snapshot);
    if (!LoadFeedFile(untouched ? feedPath.value_or(u"") : target, *result.parsed, job.takeTitle)) {
        result.outcome = UpdateOutcome::kParseFailed;
        return result;
    }
    result.outcome = UpdateOutcome::kUpdated;
    if (!untouched && temp && feedPath) {
        result.feed = std::move(temp);
        result.feedPath = *feedPath;
    }
    progress.Stage(kStrStageDownloadImage);
    FetchImage(job, *result.parsed, fetcher, settings, result);
    return result;
}

Channel* FindLiveChannel(const ChannelStore& store, const Channel* channel, int32_t id) {
    for (const auto& category : store.categories()) {
        for (const auto& candidate : category->channels()) {
            if (candidate.get() == channel && candidate->id() == id) {
                return candidate.get();
            }
        }
    }
    return nullptr;
}

bool ApplyChannelResult(ChannelStore& store, RefreshObserver& observer, ChannelResult result,
                        const RefreshCompletion& completion) {
    Channel* live = FindLiveChannel(store, result.channel, result.id);
    if (live == nullptr) {
        return false;
    }
    if (result.outcome == UpdateOutcome::kStopped) {
        AbandonChannelUpdate(*live, result.previousState, observer);
        return false;
    }
    KeepServerState(*live, result);
    if (result.outcome == UpdateOutcome::kNotModified) {
        MarkUpdated(*live, observer);
        if (completion) {
            observer.PostRefreshDone(*live, completion);
        }
        return true;
    }
    if (result.outcome != UpdateOutcome::kUpdated) {
        RecordFailure(*live, observer, result);
        return false;
    }
    Channel& parsed = *result.parsed;
    // Read states come from the stories in memory, or from the cached feed before it is replaced,
    // so that they also survive for channels not opened in this run.
    const Channel::ItemList stored =
        live->items().empty() ? StoredItems(*live, result.volume) : Channel::ItemList{};
    const Channel::ItemList& previous = live->items().empty() ? stored : live->items();
    CarryReadStates(previous, parsed);
    if (result.feed) {
        result.feed->MoveOver(result.feedPath);
    }
    if (result.image) {
        result.image->MoveOver(result.imagePath);
    }
    Channel::ItemList old = TakeFeedFields(*live, parsed, result.takeTitle);
    // The new cached feed knows nothing of what was read: have the states written into it.
    if (std::any_of(live->items().begin(), live->items().end(),
                    [](const auto& item) { return item->isRead(); })) {
        live->SetModified(true);
    }
    MarkUpdated(*live, observer);
    observer.RetireItems(*live, std::move(old));
    if (completion) {
        observer.PostRefreshDone(*live, completion);
    }
    return true;
}

} // namespace qf
