#include "net/HttpSession.h"

#include "net/UrlParts.h"
#include "platform/Text.h"
#include "platform/Version.h"

#include <algorithm>
#include <cstdlib>
#include <curl/curl.h>
#include <exception>
#include <openssl/ssl.h>
#include <openssl/x509_vfy.h>

namespace qf {

namespace {

// Sent as it always was, trailing space included; it replaces libcurl's own Accept header.
constexpr char kAcceptHeader[] = "Accept: */* ";

// A transfer counts as stalled while fewer bytes than this move per second.
constexpr long kStalledBytesPerSecond = 1;

struct SlistDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using HeaderList = std::unique_ptr<curl_slist, SlistDeleter>;

void InitialiseCurlOnce() {
    // libcurl's global set-up must happen once before any thread makes a handle; a function-local
    // static is initialised exactly once even when several workers start together.
    static const bool initialised = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    static_cast<void>(initialised);
}

// Remembers a receiver's exception so that it never unwinds through libcurl's C frames.
template <typename Step> bool Guarded(std::exception_ptr& raised, Step step) {
    try {
        return step();
    } catch (...) {
        raised = std::current_exception();
        return false;
    }
}

// Turns libcurl's callbacks into the receiver's calls: heads are assembled from header lines,
// body blocks go through only once a head is complete.
class Exchange {
public:
    explicit Exchange(ResponseReceiver& receiver) : receiver_(receiver) {}

    bool HeaderLine(std::string_view line);
    bool BodyBlock(std::string_view data);
    bool ShouldStop() { return receiver_.ShouldStop(); }

    bool headComplete() const { return headComplete_; }
    std::exception_ptr& raised() { return raised_; }

private:
    ResponseReceiver& receiver_;
    ResponseHead head_;
    bool headComplete_ = false;
    std::exception_ptr raised_;
};

std::string_view TrimSpace(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

bool Exchange::HeaderLine(std::string_view line) {
    line = TrimSpace(line);
    if (line.starts_with("HTTP/")) {
        // A new answer begins (after an interim answer or an authentication challenge).
        head_ = ResponseHead{};
        headComplete_ = false;
        const auto space = line.find(' ');
        head_.status = space == std::string_view::npos ? 0 : LeadingDecimal(line.substr(space));
        return true;
    }
    if (line.empty()) {
        const bool interim = head_.status >= 100 && head_.status < 200;
        if (interim) {
            return true;
        }
        headComplete_ = true;
        return receiver_.OnHead(head_);
    }
    const auto colon = line.find(':');
    if (colon != std::string_view::npos) {
        head_.headers.emplace_back(std::string(TrimSpace(line.substr(0, colon))),
                                   std::string(TrimSpace(line.substr(colon + 1))));
    }
    return true;
}

bool Exchange::BodyBlock(std::string_view data) {
    if (!headComplete_) {
        return true;
    }
    // A decoded body can come in larger pieces than the blocks receivers are promised.
    for (std::size_t at = 0; at < data.size(); at += HttpSession::kBlockSize) {
        if (!receiver_.OnBlock(data.substr(at, HttpSession::kBlockSize))) {
            return false;
        }
    }
    return true;
}

std::size_t OnHeaderData(char* data, std::size_t size, std::size_t count, void* context) {
    auto& exchange = *static_cast<Exchange*>(context);
    const std::size_t length = size * count;
    const bool go = Guarded(exchange.raised(),
                            [&] { return exchange.HeaderLine(std::string_view(data, length)); });
    return go ? length : 0;
}

std::size_t OnBodyData(char* data, std::size_t size, std::size_t count, void* context) {
    auto& exchange = *static_cast<Exchange*>(context);
    const std::size_t length = size * count;
    const bool go = Guarded(exchange.raised(),
                            [&] { return exchange.BodyBlock(std::string_view(data, length)); });
    return go ? length : 0;
}

int OnTransferInfo(void* context, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    auto& exchange = *static_cast<Exchange*>(context);
    const bool go = Guarded(exchange.raised(), [&] { return !exchange.ShouldStop(); });
    return go ? 0 : 1;
}

// Forgives a certificate's dates and nothing else: the chain must still lead to a trusted issuer.
int ForgiveCertificateDates(int preverified, X509_STORE_CTX* store) {
    if (preverified != 0) {
        return 1;
    }
    const int error = X509_STORE_CTX_get_error(store);
    if (error == X509_V_ERR_CERT_HAS_EXPIRED || error == X509_V_ERR_CERT_NOT_YET_VALID) {
        // Cleared so that the connection's final verdict reads as verified.
        X509_STORE_CTX_set_error(store, X509_V_OK);
        return 1;
    }
    return 0;
}

// How a server's certificate is judged, handed to OpenSSL for each new connection.
struct CertificatePolicy {
    bool tolerant = false;
    std::string hostName; // IPv6 addresses without their brackets
};

CURLcode InstallCertificatePolicy(CURL*, void* sslContext, void* policyPointer) {
    auto* context = static_cast<SSL_CTX*>(sslContext);
    const auto& policy = *static_cast<CertificatePolicy*>(policyPointer);
    if (policy.tolerant) {
        SSL_CTX_set_verify(context, SSL_VERIFY_PEER, ForgiveCertificateDates);
        return CURLE_OK;
    }
    // OpenSSL checks the name itself (libcurl checks again), so that a mismatch reaches us as a
    // verdict of its own rather than as a generic failure.
    X509_VERIFY_PARAM* parameters = SSL_CTX_get0_param(context);
    const bool named = X509_VERIFY_PARAM_set1_ip_asc(parameters, policy.hostName.c_str()) == 1 ||
                       X509_VERIFY_PARAM_set1_host(parameters, policy.hostName.c_str(), 0) == 1;
    return named ? CURLE_OK : CURLE_SSL_CERTPROBLEM;
}

int32_t CertificateError(long verifyResult) {
    switch (verifyResult) {
    case X509_V_ERR_CERT_HAS_EXPIRED:
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return kErrorCertificateDate;
    case X509_V_ERR_HOSTNAME_MISMATCH:
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
        return kErrorCertificateHostName;
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_CERT_UNTRUSTED:
        return kErrorUntrustedIssuer;
    default:
        return kErrorCertificate;
    }
}

int32_t PlatformError(CURL* easy, CURLcode code) {
    long verifyResult = X509_V_OK;
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return kErrorNameNotResolved;
    case CURLE_COULDNT_CONNECT:
        return kErrorCannotConnect;
    case CURLE_OPERATION_TIMEDOUT:
        return kErrorTimeout;
    case CURLE_ABORTED_BY_CALLBACK:
        // Only the receiver's ShouldStop ends a transfer this way.
        return kErrorOperationCancelled;
    case CURLE_GOT_NOTHING:
        return kErrorConnectionAborted;
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
        return kErrorConnectionReset;
    case CURLE_PEER_FAILED_VERIFICATION:
        curl_easy_getinfo(easy, CURLINFO_SSL_VERIFYRESULT, &verifyResult);
        return CertificateError(verifyResult);
    case CURLE_SSL_CONNECT_ERROR:
        // A handshake can also end on the certificate verdict; anything else is no certificate
        // matter.
        curl_easy_getinfo(easy, CURLINFO_SSL_VERIFYRESULT, &verifyResult);
        return verifyResult == X509_V_OK ? kErrorInternal : CertificateError(verifyResult);
    default:
        return kErrorInternal;
    }
}

bool IsUsableHostName(std::string_view name) {
    if (name.empty()) {
        return false;
    }
    if (name.front() == '[') {
        return name.size() > 2 && name.back() == ']' &&
               name.substr(1, name.size() - 2).find_first_not_of("0123456789abcdefABCDEF:.") ==
                   std::string_view::npos;
    }
    // Anything that a URL parser would read as user information, a port, a path or a query
    // would send the request elsewhere than to the named host.
    constexpr std::string_view kForbidden = "/\\?#@:[]<>\"{}|^`% ";
    return std::none_of(name.begin(), name.end(), [&](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7F || kForbidden.find(c) != std::string_view::npos;
    });
}

// Escapes what cannot stand in a request line (spaces, control characters, non-ASCII bytes).
std::string EscapedTarget(std::string_view path) {
    constexpr char kHex[] = "0123456789ABCDEF";
    std::string target = "/";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= 0x20 || byte >= 0x7F) {
            target += '%';
            target += kHex[byte >> 4];
            target += kHex[byte & 0xF];
        } else {
            target += c;
        }
    }
    return target;
}

struct RequestTarget {
    std::string url;
    std::string hostName;
};

// The URL handed to libcurl and the name the certificate must bear; nothing when the host text
// cannot name a host.
std::optional<RequestTarget> TargetOf(const HttpRequest& request) {
    const std::string name = Utf16ToUtf8(HostWithoutPort(request.host));
    if (!IsUsableHostName(name)) {
        return std::nullopt;
    }
    std::string url = request.secure ? "https://" : "http://";
    url += name;
    if (request.port != 0) {
        url += ':' + std::to_string(request.port);
    }
    url += EscapedTarget(Utf16ToUtf8(request.path));
    const bool bracketed = name.front() == '[';
    return RequestTarget{std::move(url),
                         std::string(bracketed ? name.substr(1, name.size() - 2) : name)};
}

// The request's own headers: the Accept header, the validators and the authorization when it has
// them, and a form's content type. A value that could end the header line is never sent.
HeaderList RequestHeaders(const HttpRequest& request) {
    curl_slist* list = curl_slist_append(nullptr, kAcceptHeader);
    const auto add = [&list](std::string_view name, std::string_view value) {
        if (!value.empty() && value.find_first_of("\r\n") == std::string_view::npos) {
            list = curl_slist_append(list, (std::string(name) + ": " + std::string(value)).c_str());
        }
    };
    add("If-None-Match", request.ifNoneMatch);
    add("If-Modified-Since", request.ifModifiedSince);
    add("Authorization", request.authorization);
    if (request.formBody) {
        add("Content-Type", "application/x-www-form-urlencoded");
        // No waiting for a "100 Continue" that some servers never send.
        list = curl_slist_append(list, "Expect:");
    }
    return HeaderList(list);
}

void SetRequest(CURL* easy, const std::string& url, curl_slist* headers) {
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_HTTPGET, 1L);
    curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(easy, CURLOPT_USERAGENT, kUserAgent);
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 0L);
    // A proxy's answer to CONNECT is no answer of the server's.
    curl_easy_setopt(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_BUFFERSIZE, static_cast<long>(HttpSession::kBlockSize));
    // libcurl decodes the body, so every limit and block counts decoded bytes.
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "gzip, deflate");
    // An idle connection to the last host only: a refresh that moves on to another host leaves
    // nothing open behind it, which the per-host limit of a refresh of all channels relies on.
    curl_easy_setopt(easy, CURLOPT_MAXCONNECTS, 1L);
}

// A connection must be made within the time-out, and a transfer may go that long without a byte
// moving; one that keeps moving is never cut.
void SetTimeouts(CURL* easy, std::chrono::milliseconds timeout) {
    const auto stallSeconds = std::max<long>(
        1, static_cast<long>(std::chrono::ceil<std::chrono::seconds>(timeout).count()));
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(timeout.count()));
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_LIMIT, kStalledBytesPerSecond);
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_TIME, stallSeconds);
}

void SetCallbacks(CURL* easy, Exchange& exchange) {
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, OnHeaderData);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &exchange);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, OnBodyData);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &exchange);
    curl_easy_setopt(easy, CURLOPT_XFERINFOFUNCTION, OnTransferInfo);
    curl_easy_setopt(easy, CURLOPT_XFERINFODATA, &exchange);
    curl_easy_setopt(easy, CURLOPT_NOPROGRESS, 0L);
}

// libcurl reads the body from the request's own storage, which outlives the transfer.
void SetFormBody(CURL* easy, std::string_view body) {
    curl_easy_setopt(easy, CURLOPT_POST, 1L);
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    // Never a null pointer, which would make libcurl read the body from standard input.
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, body.empty() ? "" : body.data());
}

void SetCredentials(CURL* easy, std::u16string_view userName, std::u16string_view password) {
    if (userName.empty()) {
        return;
    }
    curl_easy_setopt(easy, CURLOPT_USERNAME, Utf16ToUtf8(userName).c_str());
    curl_easy_setopt(easy, CURLOPT_PASSWORD, Utf16ToUtf8(password).c_str());
    curl_easy_setopt(easy, CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC | CURLAUTH_DIGEST));
}

void SetCertificateChecks(CURL* easy, CertificatePolicy& policy) {
    if (const char* caFile = std::getenv("QUILLFEED_CA_FILE");
        caFile != nullptr && *caFile != '\0') {
        curl_easy_setopt(easy, CURLOPT_CAINFO, caFile);
    }
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, policy.tolerant ? 0L : 2L);
    curl_easy_setopt(easy, CURLOPT_SSL_CTX_FUNCTION, InstallCertificatePolicy);
    curl_easy_setopt(easy, CURLOPT_SSL_CTX_DATA, &policy);
}

} // namespace

std::optional<std::string_view> ResponseHead::Header(std::string_view name) const {
    for (const auto& [key, value] : headers) {
        if (EqualsIgnoreCase(key, name)) {
            return value;
        }
    }
    return std::nullopt;
}

void HttpSession::EasyHandleDeleter::operator()(void* easy) const {
    curl_easy_cleanup(static_cast<CURL*>(easy));
}

HttpSession::HttpSession(void* easy, std::chrono::milliseconds timeout)
    : easy_(easy), timeout_(timeout) {}

HttpSession::~HttpSession() = default;

std::unique_ptr<HttpSession> HttpSession::Open(std::chrono::milliseconds timeout) {
    InitialiseCurlOnce();
    CURL* easy = curl_easy_init();
    if (easy == nullptr) {
        return nullptr;
    }
    return std::unique_ptr<HttpSession>(new HttpSession(easy, timeout));
}

HttpResult HttpSession::Send(const HttpRequest& request, ResponseReceiver& receiver) {
    const std::optional<RequestTarget> target = TargetOf(request);
    if (!target) {
        return {false, kErrorNameNotResolved};
    }
    if (receiver.ShouldStop()) {
        return {false, kErrorOperationCancelled};
    }
    CURL* easy = easy_.get();
    // Forgets the previous request's options but keeps the open connections.
    curl_easy_reset(easy);
    Exchange exchange(receiver);
    const HeaderList headers = RequestHeaders(request);

    // Both live until the transfer is over: libcurl keeps pointers to them.
    CertificatePolicy policy{request.tolerantCertificates, target->hostName};
    SetRequest(easy, target->url, headers.get());
    if (request.formBody) {
        SetFormBody(easy, *request.formBody);
    }
    SetTimeouts(easy, timeout_);
    SetCallbacks(easy, exchange);
    SetCredentials(easy, request.userName, request.password);
    if (request.secure) {
        SetCertificateChecks(easy, policy);
    }

    const CURLcode code = curl_easy_perform(easy);
    if (exchange.raised()) {
        std::rethrow_exception(exchange.raised());
    }
    if (exchange.headComplete()) {
        return {true, 0};
    }
    return {false, PlatformError(easy, code)};
}

} // namespace qf
