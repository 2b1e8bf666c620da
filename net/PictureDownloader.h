#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace qf {

class HttpFetcher;

// How much work pictures may make at once.
struct PictureLimits {
    static constexpr int kDefaultWorkers = 3;
    static constexpr int64_t kDefaultMaxBytes = int64_t{4} * 1024 * 1024;
    static constexpr std::chrono::milliseconds kDefaultTimeout{15000};

    // Downloads running side by side; more requests wait their turn.
    int workers = kDefaultWorkers;
    // A picture larger than this is dropped.
    int64_t maxBytes = kDefaultMaxBytes;
    // Bounds the making of a connection and any stretch in which no byte moves.
    std::chrono::milliseconds timeout = kDefaultTimeout;
};

// Copies pictures from http(s) addresses into local files on worker threads of its own, a few
// at a time. A picture's file appears whole or not at all: it is fetched beside its place and
// written there atomically only when it arrived complete and within the size limit.
class PictureDownloader {
public:
    // Called on a worker thread when a request has ended; `saved` tells whether the picture's
    // file is now in place. Not called for requests that were dropped or cut off by closing.
    using Done = std::function<void(const std::u16string& url, bool saved)>;

    explicit PictureDownloader(Done done, PictureLimits limits = {});
    // Drops the waiting requests, cuts off the running ones and waits for the workers, which
    // takes no longer than about a second whatever the servers do.
    ~PictureDownloader();
    PictureDownloader(const PictureDownloader&) = delete;
    PictureDownloader& operator=(const PictureDownloader&) = delete;

    // Queues the download of `url` into the file `path`. False for an address that is not
    // http(s); a request for an address already waiting or running is taken as that one.
    bool Request(const std::u16string& url, const std::u16string& path);
    // Forgets the requests that have not started yet; running downloads go on to their end.
    void DropWaiting();

private:
    struct Job {
        std::u16string url;
        std::u16string path;
    };

    void Work();
    bool NextJob(Job& job);
    bool Fetch(HttpFetcher& fetcher, const Job& job);
    bool Finished(const Job& job);

    const Done done_;
    const PictureLimits limits_;
    std::atomic<bool> cancel_{false};
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Job> waiting_;
    // The addresses waiting or running.
    std::set<std::u16string> active_;
    int idle_ = 0;
    bool closing_ = false;
    std::vector<std::thread> workers_;
};

} // namespace qf
