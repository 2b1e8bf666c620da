#include "sync/GReaderRequest.h"

#include "net/HttpSession.h"
#include "net/UrlParts.h"
#include "platform/Text.h"

#include <optional>

namespace qf {

namespace {

// No answer of the API comes near this; a server that sends more is not one to trust.
constexpr std::size_t kAnswerLimit = std::size_t{32} * 1024 * 1024;

// Collects one answer's status and body, the body up to kAnswerLimit.
class AnswerReceiver final : public ResponseReceiver {
public:
    explicit AnswerReceiver(const std::function<bool()>& stop) : stop_(stop) {}

    bool OnHead(const ResponseHead& head) override {
        status = head.status;
        body.clear();
        return true;
    }
    bool OnBlock(std::string_view block) override {
        if (block.size() > kAnswerLimit - body.size()) {
            tooLarge = true;
            return false;
        }
        body.append(block);
        return true;
    }
    bool ShouldStop() override {
        stopped = stopped || (stop_ && stop_());
        return stopped;
    }

    int32_t status = 0;
    std::string body;
    bool tooLarge = false;
    bool stopped = false;

private:
    const std::function<bool()>& stop_;
};

// The HTTP request for `target` below the base address, its path kept in `path`; nothing when the
// address is not http or https.
std::optional<HttpRequest> RequestFor(std::u16string_view server, std::string_view target,
                                      UrlParts& base, std::u16string& path) {
    base.scheme = 0; // an address without a known scheme stays unknown
    CrackUrl(server, base);
    if (base.scheme != kSchemeHttp && base.scheme != kSchemeHttps) {
        return std::nullopt;
    }
    path = base.path;
    while (!path.empty() && path.back() == u'/') {
        path.pop_back();
    }
    // The session's paths have no leading "/".
    path += Utf8ToUtf16(path.empty() ? target.substr(1) : target);
    HttpRequest request;
    request.secure = base.scheme == kSchemeHttps;
    request.host = base.host;
    request.path = path;
    request.port = base.port;
    return request;
}

} // namespace

GReaderAnswer SendGReaderRequest(HttpSession* session, const GReaderRequest& request,
                                 const std::function<bool()>& stop) {
    GReaderAnswer answer;
    UrlParts base;
    std::u16string path;
    std::optional<HttpRequest> http = RequestFor(request.server, request.target, base, path);
    if (!http) {
        answer.failure = u"The server address must begin with http:// or https://.";
        return answer;
    }
    const auto unreachable = [](int32_t error) {
        return u"Cannot reach the server; Error code: " + AsciiToUtf16(std::to_string(error));
    };
    if (session == nullptr) {
        answer.failure = unreachable(kErrorInternal);
        return answer;
    }
    http->authorization = request.authorization;
    if (request.form != nullptr) {
        http->formBody = *request.form;
    }
    AnswerReceiver receiver(stop);
    const HttpResult result = session->Send(*http, receiver);
    answer.stopped = receiver.stopped;
    if (receiver.stopped) {
        answer.failure = u"Stopped before the server's answer was complete.";
    } else if (receiver.tooLarge) {
        answer.failure = u"The server's answer is too large.";
    } else if (!result.headReceived) {
        answer.failure = unreachable(result.error);
    } else {
        answer.arrived = true;
        answer.status = receiver.status;
        answer.body = std::move(receiver.body);
    }
    return answer;
}

} // namespace qf
