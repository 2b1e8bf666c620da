#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qf {

// Error numbers of a request that failed before an answer arrived. They are the numbers the
// handheld's HTTP library gave for the same failures, so users and help pages see the same codes.
inline constexpr int32_t kErrorTimeout = 12002;
inline constexpr int32_t kErrorInternal = 12004;
inline constexpr int32_t kErrorNameNotResolved = 12007;
inline constexpr int32_t kErrorOperationCancelled = 12017;
inline constexpr int32_t kErrorCannotConnect = 12029;
inline constexpr int32_t kErrorConnectionAborted = 12030;
inline constexpr int32_t kErrorConnectionReset = 12031;
inline constexpr int32_t kErrorCertificateDate = 12037;
inline constexpr int32_t kErrorCertificateHostName = 12038;
inline constexpr int32_t kErrorUntrustedIssuer = 12045;
inline constexpr int32_t kErrorCertificate = 12055;

// The status line and the headers of one answer.
struct ResponseHead {
    int32_t status = 0;
    std::vector<std::pair<std::string, std::string>> headers;

    // The first header of that name, compared ignoring case.
    std::optional<std::string_view> Header(std::string_view name) const;
};

// Takes an answer as it arrives. Each call may end the transfer early.
class ResponseReceiver {
public:
    virtual ~ResponseReceiver() = default;
    // An answer's head is complete. An authentication challenge is followed by the head of the
    // repeated request. False ends the transfer.
    virtual bool OnHead(const ResponseHead& head) = 0;
    // The next block of the body. False ends the transfer.
    virtual bool OnBlock(std::string_view block) = 0;
    // Asked before the request is sent and then at least about once a second while the transfer
    // runs, also while it waits for a connection or for the answer's head; true ends the transfer
    // (without a head, with kErrorOperationCancelled).
    virtual bool ShouldStop() = 0;
};

struct HttpRequest {
    bool secure = false;
    // A host name, possibly followed by ":" and the port digits; `port` is the port used.
    std::u16string_view host;
    // The request target without its leading "/", query included.
    std::u16string_view path;
    // 0 means the scheme's default port.
    uint16_t port = 0;
    // Offered for Basic or Digest authentication when the user name is not empty.
    std::u16string_view userName;
    std::u16string_view password;
    // Accept an expired or not-yet-valid certificate and one for another host name; an issuer
    // outside the trust store is refused all the same.
    bool tolerantCertificates = false;
    // Sent as If-None-Match and If-Modified-Since, byte for byte, when not empty.
    std::string_view ifNoneMatch;
    std::string_view ifModifiedSince;
    // Sent as the Authorization header when not empty, for schemes libcurl does not speak.
    std::string_view authorization;
    // When set, the request is a POST of this application/x-www-form-urlencoded body.
    std::optional<std::string_view> formBody;
};

struct HttpResult {
    // The head of the final answer arrived; whatever happened to the body after it.
    bool headReceived = false;
    // Without a head: why the request failed (one of the error numbers above).
    int32_t error = 0;
};

// Sends requests (GET, or POST with a form body) one after the other over one reused libcurl
// handle, so that keep-alive connections carry over from one request to the next. Redirects are
// never followed here. Every request asks for a gzip or deflate body, and receivers get it decoded,
// in blocks of at most kBlockSize bytes. The handle keeps at most one idle connection: the one of
// its last request.
class HttpSession {
public:
    // The largest body block handed to a receiver.
    static constexpr std::size_t kBlockSize = 10240;

    // `timeout` bounds the making of a connection and any stretch in which no byte moves.
    // Null when libcurl cannot be set up.
    static std::unique_ptr<HttpSession> Open(std::chrono::milliseconds timeout);

    ~HttpSession();
    HttpSession(const HttpSession&) = delete;
    HttpSession& operator=(const HttpSession&) = delete;

    // Blocks until the answer is complete or the receiver ended the transfer. An exception thrown
    // by the receiver ends the transfer and is rethrown here.
    HttpResult Send(const HttpRequest& request, ResponseReceiver& receiver);

private:
    struct EasyHandleDeleter {
        void operator()(void* easy) const;
    };

    HttpSession(void* easy, std::chrono::milliseconds timeout);

    std::unique_ptr<void, EasyHandleDeleter> easy_;
    std::chrono::milliseconds timeout_;
};

} // namespace qf
