#pragma once

#include "net/HttpSession.h"
#include "net/UrlParts.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace qf {

// Error codes of a download besides the platform's request errors (see net/HttpSession.h) and the
// HTTP statuses it names: 404, 410, 429, 503 and a redirect status past the second redirect.
inline constexpr int32_t kErrorUnsupportedScheme = -3;
inline constexpr int32_t kErrorException = -2;

// Progress stages: once before the body with the Content-Length, after every block written with
// the running total, once after the file was closed with the final total.
inline constexpr int32_t kProgressStarted = 0;
inline constexpr int32_t kProgressBlock = 1;
inline constexpr int32_t kProgressFinished = 2;
// The total reported when the server sent no Content-Length.
inline constexpr int32_t kUnknownLength = -1;

// The validators of a cached copy, exactly as its server sent them; empty ones are not sent.
struct Validators {
    std::u16string_view etag;
    std::u16string_view lastModified;
};

using ProgressCallback = std::function<void(int32_t stage, int32_t totalBytes, int32_t bytesSoFar)>;

struct FetchSettings {
    static constexpr std::chrono::milliseconds kDefaultTimeout{30000};

    // Accept an expired or not-yet-valid certificate and a host-name mismatch on https; an
    // untrusted issuer is refused all the same.
    bool tolerantCertificates = false;
    // Bounds the making of a connection and any stretch in which no byte moves. Read when the
    // session is opened.
    std::chrono::milliseconds timeout = kDefaultTimeout;
    // The store's stop flags (not owned, may be null). Once either is set the request ends within
    // about a second, also while it connects or waits for its answer. Before the answer came the
    // download is neither done nor failed (StoppedBeforeAnswer); a body being saved ends after
    // the current block, what was saved stays and the download counts as done.
    const std::atomic<bool>* stopRequested = nullptr;
    const std::atomic<bool>* abortRequested = nullptr;
};

// Copies one web resource into a local file with a GET request. Redirects are followed here, at
// most two. Not shared between threads; a worker may keep one fetcher and its session open over
// several downloads so that keep-alive connections are reused. Each download cracks the address
// it is given afresh, so none depends on the one before.
class HttpFetcher {
public:
    HttpFetcher();
    ~HttpFetcher();
    HttpFetcher(const HttpFetcher&) = delete;
    HttpFetcher& operator=(const HttpFetcher&) = delete;

    // Cracks `url` into the fetcher's own URL fields; true for the http, https, ftp and file
    // schemes.
    bool CrackSupportedUrl(std::u16string_view url);

    // True when a session could be had; an open session is kept as it is.
    bool OpenSession(const FetchSettings& settings);
    // Always true.
    bool CloseSession();

    // Fetches `url` into `localPath`, creating the file's folder. An address without a known
    // scheme is http. ftp and file URLs succeed at once without touching anything. Credentials are
    // offered only when both are non-empty. On false, ErrorCode() says why; a 200 answer always
    // counts as success, also when the local file cannot be created or the body was cut short.
    // `validators` go with the request to `url` itself, never to where it redirects; a 304 to
    // them is a success that writes nothing (NotModified).
    bool Download(const FetchSettings& settings, std::u16string_view url,
                  std::u16string_view localPath, std::u16string_view userName,
                  std::u16string_view password, const ProgressCallback& progress = {},
                  const Validators& validators = {});

    int32_t ErrorCode() const { return errorCode_; }
    // The last download succeeded without a request because the address given was an ftp or file
    // one (such channels count as up to date). A redirect to such an address is fetched as any.
    bool NothingFetched() const { return nothingFetched_; }
    // The last download failed because a stop flag ended it before an answer came.
    bool StoppedBeforeAnswer() const { return stoppedBeforeAnswer_; }
    // The status of the last answer.
    int32_t StatusCode() const { return statusCode_; }
    // The last saved answer's ETag, without its quotes.
    const std::u16string& EntityTag() const { return entityTag_; }
    // The last download ended on a 304 to its validators: the cached copy is current.
    bool NotModified() const { return notModified_; }
    // The head of the last answer (the final one after redirects); empty when none came.
    const ResponseHead& Answer() const { return answer_; }
    // The address the last download's answer came from after redirects, empty when there were
    // none; and whether every redirect on the way was a permanent one (301 or 308).
    const std::u16string& RedirectedTo() const { return redirectedTo_; }
    bool OnlyPermanentRedirects() const { return onlyPermanentRedirects_; }
    // The URL as last cracked (a redirect target replaces it).
    const UrlParts& Url() const { return url_; }

private:
    struct Job;

    bool Fetch(const Job& job, std::u16string_view url, int depth);
    bool Request(const Job& job, int depth);
    bool Answered(const Job& job, int depth, bool conditional);
    bool FollowRedirect(const Job& job, std::u16string_view location, int depth);

    std::unique_ptr<HttpSession> session_;
    UrlParts url_;
    int32_t statusCode_ = 200;
    int32_t errorCode_ = 0;
    bool nothingFetched_ = false;
    bool stoppedBeforeAnswer_ = false;
    bool notModified_ = false;
    bool onlyPermanentRedirects_ = true;
    std::u16string entityTag_;
    std::u16string redirectedTo_;
    ResponseHead answer_;
};

} // namespace qf
