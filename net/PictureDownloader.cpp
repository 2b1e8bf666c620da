#include "net/PictureDownloader.h"

#include "net/HttpFetcher.h"
#include "net/PictureFiles.h"
#include "platform/AtomicFile.h"
#include "platform/Files.h"
#include "platform/FsPath.h"

#include <filesystem>
#include <iterator>
#include <system_error>

namespace qf {

namespace {

constexpr int32_t kStatusOk = 200;
// Beside the picture's own file, so that the finished file is renamed within one folder.
constexpr std::u16string_view kPartialSuffix = u".part";

// Watches a download's progress: too large as soon as the announced length or the bytes so far
// pass the limit, and incomplete when the body ended short of its announced length.
struct SizeWatch {
    int64_t limit;
    std::atomic<bool> tooLarge{false};
    bool incomplete = false;

    void operator()(int32_t stage, int32_t total, int32_t soFar) {
        if (total > limit || soFar > limit) {
            tooLarge = true;
        }
        if (stage == kProgressFinished) {
            incomplete = total != kUnknownLength && soFar != total;
        }
    }
};

} // namespace

PictureDownloader::PictureDownloader(Done done, PictureLimits limits)
    : done_(std::move(done)), limits_(limits) {}

PictureDownloader::~PictureDownloader() {
    {
        std::lock_guard lock(mutex_);
        closing_ = true;
        waiting_.clear();
    }
    cancel_ = true;
    wake_.notify_all();
    for (std::thread& worker : workers_) {
        worker.join();
    }
}

bool PictureDownloader::Request(const std::u16string& url, const std::u16string& path) {
    if (!IsPictureAddress(url)) {
        return false;
    }
    std::lock_guard lock(mutex_);
    if (closing_ || !active_.insert(url).second) {
        return true;
    }
    waiting_.push_back({url, path});
    if (idle_ < static_cast<int>(waiting_.size()) &&
        static_cast<int>(workers_.size()) < limits_.workers) {
        workers_.emplace_back([this] { Work(); });
    }
    wake_.notify_one();
    return true;
}

void PictureDownloader::DropWaiting() {
    std::lock_guard lock(mutex_);
    for (const Job& job : waiting_) {
        active_.erase(job.url);
    }
    waiting_.clear();
}

void PictureDownloader::Work() {
    // One fetcher per worker keeps its connections open from one picture to the next.
    HttpFetcher fetcher;
    Job job;
    while (NextJob(job)) {
        const bool saved = Fetch(fetcher, job);
        if (Finished(job)) {
            done_(job.url, saved);
        }
    }
}

bool PictureDownloader::NextJob(Job& job) {
    std::unique_lock lock(mutex_);
    ++idle_;
    wake_.wait(lock, [this] { return closing_ || !waiting_.empty(); });
    --idle_;
    if (closing_) {
        return false;
    }
    job = std::move(waiting_.front());
    waiting_.pop_front();
    return true;
}

// True when the requester still wants to hear of it.
bool PictureDownloader::Finished(const Job& job) {
    std::lock_guard lock(mutex_);
    active_.erase(job.url);
    return !closing_;
}

bool PictureDownloader::Fetch(HttpFetcher& fetcher, const Job& job) {
    SizeWatch watch{limits_.maxBytes};
    FetchSettings settings;
    settings.timeout = limits_.timeout;
    settings.stopRequested = &watch.tooLarge;
    // Closing the downloader ends a transfer in flight as the stop button ends a refresh's.
    settings.abortRequested = &cancel_;
    const std::u16string partial = job.path + std::u16string(kPartialSuffix);
    bool saved = false;
    if (fetcher.OpenSession(settings) &&
        fetcher.Download(settings, job.url, partial, u"", u"", std::ref(watch)) &&
        fetcher.StatusCode() == kStatusOk && !watch.tooLarge && !watch.incomplete && !cancel_) {
        const std::string bytes = ReadFileBytes(partial).value_or(std::string());
        saved = !bytes.empty() && static_cast<int64_t>(bytes.size()) <= limits_.maxBytes &&
                WriteFileAtomically(ToFsPath(job.path), bytes);
    }
    DeleteFile(partial);
    return saved;
}

} // namespace qf
