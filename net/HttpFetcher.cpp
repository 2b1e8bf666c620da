#include "net/HttpFetcher.h"

#include "net/ConnectionManager.h"
#include "net/HttpSession.h"
#include "platform/Folders.h"
#include "platform/FsPath.h"
#include "platform/Text.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <system_error>

namespace qf {

namespace {

constexpr int32_t kStatusOk = 200;
constexpr int32_t kStatusMovedPermanently = 301;
constexpr int32_t kStatusFound = 302;
constexpr int32_t kStatusNotModified = 304;
constexpr int32_t kStatusTemporaryRedirect = 307;
constexpr int32_t kStatusPermanentRedirect = 308;
constexpr int32_t kStatusNotFound = 404;
constexpr int32_t kStatusGone = 410;
constexpr int32_t kStatusTooManyRequests = 429;
constexpr int32_t kStatusUnavailable = 503;
// Two redirects are followed; meeting a third fails the download.
constexpr int kMaxRedirects = 2;
// The body of an answer that is not saved (an error page, a redirect) is read and dropped so
// that its connection can serve the next request; past this size the connection is given up.
constexpr std::size_t kDroppedBodyLimit = std::size_t{64} * 1024;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// Header values such as ETag and Location lose one leading and then one trailing double quote.
std::u16string WithoutQuotes(std::string_view value) {
    std::u16string text = Utf8ToUtf16(value);
    if (text.starts_with(u'"')) {
        text.erase(0, 1);
    }
    if (text.ends_with(u'"')) {
        text.pop_back();
    }
    return text;
}

int32_t Clamped(int64_t value) {
    return static_cast<int32_t>(std::min<int64_t>(value, std::numeric_limits<int32_t>::max()));
}

// Streams the body of a 200 answer into the local file block by block, watching the stop flags
// between blocks and, through the transfer's regular checks, before the answer comes.
class BodyWriter : public ResponseReceiver {
public:
    BodyWriter(const FetchSettings& settings, std::u16string_view localPath,
               const ProgressCallback& progress)
        : settings_(settings), localPath_(localPath), progress_(progress) {}

    bool OnHead(const ResponseHead& head) override;
    bool OnBlock(std::string_view block) override;
    bool ShouldStop() override { return StopFlagSet(); }

    // Closes the file and reports the final total, when a body was being saved.
    void Finish();

    const ResponseHead& head() const { return head_; }
    const std::u16string& entityTag() const { return entityTag_; }
    ResponseHead TakeHead() { return std::move(head_); }

private:
    static bool IsSet(const std::atomic<bool>* flag) { return flag != nullptr && flag->load(); }
    bool StopFlagSet() const {
        return IsSet(settings_.stopRequested) || IsSet(settings_.abortRequested);
    }
    void Report(int32_t stage) {
        if (progress_) {
            progress_(stage, length_, Clamped(written_));
        }
    }

    const FetchSettings& settings_;
    std::u16string_view localPath_;
    const ProgressCallback& progress_;
    ResponseHead head_;
    std::u16string entityTag_;
    std::unique_ptr<std::FILE, FileCloser> file_;
    int32_t length_ = kUnknownLength;
    int64_t written_ = 0;
    std::size_t dropped_ = 0;
};

bool BodyWriter::OnHead(const ResponseHead& head) {
    head_ = head;
    dropped_ = 0;
    if (head.status != kStatusOk) {
        return true;
    }
    if (const auto length = head.Header("Content-Length")) {
        length_ = LeadingDecimal(*length);
    }
    Report(kProgressStarted);
    CreateParentDirectory(localPath_);
    entityTag_ = WithoutQuotes(head.Header("ETag").value_or(""));
    file_.reset(std::fopen(ToFsPath(localPath_).c_str(), "wb"));
    // Without a file there is nothing to save, and the download still counts as done.
    return file_ != nullptr;
}

bool BodyWriter::OnBlock(std::string_view block) {
    if (head_.status != kStatusOk) {
        dropped_ += block.size();
        return dropped_ <= kDroppedBodyLimit;
    }
    if (file_ == nullptr || StopFlagSet()) {
        return false;
    }
    std::fwrite(block.data(), 1, block.size(), file_.get());
    written_ += static_cast<int64_t>(block.size());
    Report(kProgressBlock);
    return true;
}

void BodyWriter::Finish() {
    if (file_ != nullptr) {
        file_.reset();
        Report(kProgressFinished);
    }
}

} // namespace

// What stays the same across the redirects of one download.
struct HttpFetcher::Job {
    const FetchSettings& settings;
    std::u16string_view localPath;
    std::u16string_view userName;
    std::u16string_view password;
    const ProgressCallback& progress;
    const Validators& validators;
};

HttpFetcher::HttpFetcher() = default;
HttpFetcher::~HttpFetcher() = default;

bool HttpFetcher::CrackSupportedUrl(std::u16string_view url) {
    CrackUrl(url, url_);
    return url_.scheme == kSchemeHttp || url_.scheme == kSchemeHttps || url_.scheme == kSchemeFtp ||
           url_.scheme == kSchemeFile;
}

bool HttpFetcher::OpenSession(const FetchSettings& settings) {
    if (session_ == nullptr) {
        session_ = HttpSession::Open(settings.timeout);
    }
    return session_ != nullptr;
}

bool HttpFetcher::CloseSession() {
    session_.reset();
    return true;
}

bool HttpFetcher::Download(const FetchSettings& settings, std::u16string_view url,
                           std::u16string_view localPath, std::u16string_view userName,
                           std::u16string_view password, const ProgressCallback& progress,
                           const Validators& validators) {
    nothingFetched_ = false;
    stoppedBeforeAnswer_ = false;
    notModified_ = false;
    onlyPermanentRedirects_ = true;
    redirectedTo_.clear();
    answer_ = ResponseHead{};
    // Cracked as by a fresh fetcher: an address without a scheme must not inherit the scheme of
    // whatever this fetcher fetched before.
    url_ = UrlParts{};
    if (!CrackSupportedUrl(url)) {
        errorCode_ = kErrorUnsupportedScheme;
        return false;
    }
    if (url_.scheme == kSchemeFile || url_.scheme == kSchemeFtp) {
        // Such channels are deliberately treated as up to date.
        nothingFetched_ = true;
        return true;
    }
    const Job job{settings, localPath, userName, password, progress, validators};
    return Fetch(job, url, 0);
}

bool HttpFetcher::Fetch(const Job& job, std::u16string_view url, int depth) {
    errorCode_ = 0;
    auto& connection = ProcessConnectionHandle();
    if (!IsConnected(connection.load())) {
        EstablishConnection(url, &connection);
    }
    if (session_ == nullptr || url_.host.empty()) {
        // Nowhere to connect to: a failure without an error code.
        return false;
    }
    try {
        return Request(job, depth);
    } catch (...) {
        errorCode_ = kErrorException;
        return false;
    }
}

bool HttpFetcher::Request(const Job& job, int depth) {
    const bool withCredentials = !job.userName.empty() && !job.password.empty();
    HttpRequest request;
    request.secure = url_.scheme == kSchemeHttps;
    request.host = url_.host;
    request.path = url_.path;
    request.port = url_.port;
    request.userName = withCredentials ? job.userName : std::u16string_view{};
    request.password = withCredentials ? job.password : std::u16string_view{};
    request.tolerantCertificates = job.settings.tolerantCertificates;
    // Validators belong to the address they came from: only the first request carries them.
    const std::string etag = depth == 0 ? Utf16ToUtf8(job.validators.etag) : std::string();
    const std::string lastModified =
        depth == 0 ? Utf16ToUtf8(job.validators.lastModified) : std::string();
    request.ifNoneMatch = etag;
    request.ifModifiedSince = lastModified;

    BodyWriter writer(job.settings, job.localPath, job.progress);
    const HttpResult result = session_->Send(request, writer);
    writer.Finish();
    if (!result.headReceived) {
        errorCode_ = result.error;
        stoppedBeforeAnswer_ = result.error == kErrorOperationCancelled;
        return false;
    }
    statusCode_ = writer.head().status;
    answer_ = writer.TakeHead();
    if (statusCode_ == kStatusOk) {
        entityTag_ = writer.entityTag();
    }
    return Answered(job, depth, !etag.empty() || !lastModified.empty());
}

bool HttpFetcher::Answered(const Job& job, int depth, bool conditional) {
    switch (statusCode_) {
    case kStatusOk:
        return true;
    case kStatusNotModified:
        // Only an answer to validators we sent can mean that the cached copy is current.
        notModified_ = conditional;
        return conditional;
    case kStatusNotFound:
    case kStatusGone:
    case kStatusTooManyRequests:
    case kStatusUnavailable:
        errorCode_ = statusCode_;
        return false;
    case kStatusMovedPermanently:
    case kStatusPermanentRedirect:
    case kStatusFound:
    case kStatusTemporaryRedirect:
        return FollowRedirect(job, WithoutQuotes(answer_.Header("Location").value_or("")), depth);
    default:
        return false;
    }
}

bool HttpFetcher::FollowRedirect(const Job& job, std::u16string_view location, int depth) {
    if (depth >= kMaxRedirects) {
        errorCode_ = statusCode_;
        return false;
    }
    if (!CrackSupportedUrl(location)) {
        return false;
    }
    onlyPermanentRedirects_ = onlyPermanentRedirects_ && (statusCode_ == kStatusMovedPermanently ||
                                                          statusCode_ == kStatusPermanentRedirect);
    redirectedTo_ = std::u16string(location);
    // A redirect target is requested over HTTP whatever its scheme: the ftp and file shortcuts
    // apply to the address the caller gave, never to where the server sends us.
    return Fetch(job, location, depth + 1);
}

} // namespace qf
