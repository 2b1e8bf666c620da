#include "sync/GReaderClient.h"

#include "net/HttpFetcher.h"
#include "net/HttpSession.h"
#include "platform/Text.h"
#include "sync/FormBody.h"
#include "sync/GReaderJson.h"
#include "sync/GReaderRequest.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace qf {

namespace {

constexpr std::string_view kLongIdPrefix = "tag:google.com,2005:reader/item/";
constexpr std::string_view kApiPath = "/reader/api/0/";
constexpr std::string_view kReadingList = "user/-/state/com.google/reading-list";
constexpr std::string_view kReadState = "user/-/state/com.google/read";
// Keeps the form bodies far below the 1 MiB some servers read of a request.
constexpr std::size_t kBatchSize = 250;
constexpr std::u16string_view kLoginGone = u"The server no longer accepts the login; log in again.";

std::u16string StatusText(int32_t status) {
    return u"The server answered with status " + AsciiToUtf16(std::to_string(status)) + u".";
}

std::string_view TrimmedLine(std::string_view line) {
    const auto first = line.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) {
        return {};
    }
    return line.substr(first, line.find_last_not_of(" \t\r") - first + 1);
}

// The value of the first "name=value" line of a ClientLogin answer; empty when none.
std::string_view LineValue(std::string_view body, std::string_view name) {
    for (std::size_t at = 0; at < body.size();) {
        const auto end = std::min(body.find('\n', at), body.size());
        const std::string_view line = TrimmedLine(body.substr(at, end - at));
        if (line.size() > name.size() && line.starts_with(name) && line[name.size()] == '=') {
            return line.substr(name.size() + 1);
        }
        at = end + 1;
    }
    return {};
}

// Servers word a refused login each their own way: a Google-style "Error=" line, a JSON
// error_message, or plain text.
std::u16string RefusalReason(int32_t status, std::string_view body) {
    if (const std::string_view error = LineValue(body, "Error"); !error.empty()) {
        return Utf8ToUtf16(error);
    }
    if (const std::string message = JsonErrorMessage(body); !message.empty()) {
        return Utf8ToUtf16(message);
    }
    const auto firstLine = body.substr(0, body.find('\n'));
    if (const std::string_view line = TrimmedLine(firstLine); !line.empty()) {
        return Utf8ToUtf16(line.substr(0, 200));
    }
    return u"status " + AsciiToUtf16(std::to_string(status));
}

std::unique_ptr<HttpSession> OpenSession() {
    // The feed requests' time-out, for the same networks.
    return HttpSession::Open(FetchSettings::kDefaultTimeout);
}

} // namespace

bool ParseItemId(std::string_view text, uint64_t& id) {
    const bool isLong = text.starts_with(kLongIdPrefix);
    const std::string_view digits = isLong ? text.substr(kLongIdPrefix.size()) : text;
    if (digits.empty() || (isLong && digits.size() > 16)) {
        return false;
    }
    const char* const end = digits.data() + digits.size();
    std::from_chars_result parsed{};
    uint64_t value = 0;
    if (isLong) {
        parsed = std::from_chars(digits.data(), end, value, 16);
    } else if (digits.front() == '-') {
        // The short form is signed: ids of 2^63 and above are written as negative numbers.
        int64_t negative = 0;
        parsed = std::from_chars(digits.data(), end, negative);
        value = static_cast<uint64_t>(negative);
    } else {
        parsed = std::from_chars(digits.data(), end, value);
    }
    if (parsed.ec != std::errc{} || parsed.ptr != end) {
        return false;
    }
    id = value;
    return true;
}

std::string LongItemId(uint64_t id) {
    constexpr char kHex[] = "0123456789abcdef";
    std::string text(kLongIdPrefix);
    for (int shift = 60; shift >= 0; shift -= 4) {
        text += kHex[(id >> shift) & 0xF];
    }
    return text;
}

GReaderClient::GReaderClient(std::u16string server, std::string authToken, StopCheck stop)
    : server_(std::move(server)), authToken_(std::move(authToken)), stop_(std::move(stop)),
      session_(OpenSession()) {}

GReaderClient::~GReaderClient() = default;

LoginResult GReaderClient::Login(std::u16string_view server, std::u16string_view user,
                                 std::u16string_view password, const StopCheck& stop) {
    const std::unique_ptr<HttpSession> session = OpenSession();
    FormBody form;
    form.Add("Email", user).Add("Passwd", password);
    const GReaderAnswer answer = SendGReaderRequest(
        session.get(), {server, "/accounts/ClientLogin", {}, &form.text()}, stop);
    if (!answer.arrived) {
        return {false, {}, answer.failure};
    }
    if (!answer.succeeded()) {
        return {false, {}, RefusalReason(answer.status, answer.body)};
    }
    const std::string_view token = LineValue(answer.body, "Auth");
    if (token.empty()) {
        return {false, {}, u"The server's answer holds no login token."};
    }
    return {true, std::string(token), {}};
}

void GReaderClient::Begin() {
    loginRejected_ = false;
    stopped_ = false;
    errorText_.clear();
}

GReaderAnswer GReaderClient::Request(std::string_view target, const std::string* form) {
    const std::string path = std::string(kApiPath) + std::string(target);
    const std::string authorization = "GoogleLogin auth=" + authToken_;
    return SendGReaderRequest(session_.get(), {server_, path, authorization, form}, stop_);
}

bool GReaderClient::Fail(std::u16string text) {
    errorText_ = std::move(text);
    return false;
}

bool GReaderClient::Unreadable() {
    return Fail(u"The server's answer could not be read; is the address that of its Google "
                u"Reader API?");
}

bool GReaderClient::Accept(GReaderAnswer& answer, std::string& body) {
    if (!answer.arrived) {
        stopped_ = answer.stopped;
        return Fail(std::move(answer.failure));
    }
    if (!answer.succeeded()) {
        return Fail(StatusText(answer.status));
    }
    body = std::move(answer.body);
    return true;
}

bool GReaderClient::Get(std::string_view target, std::string& body) {
    GReaderAnswer answer = Request(target, nullptr);
    if (answer.arrived && answer.status == 401) {
        loginRejected_ = true;
        return Fail(std::u16string(kLoginGone));
    }
    return Accept(answer, body);
}

bool GReaderClient::FetchEditToken() {
    std::string body;
    if (!Get("token", body)) {
        return false;
    }
    editToken_ = TrimmedLine(body.substr(0, body.find('\n')));
    return !editToken_.empty() || Unreadable();
}

bool GReaderClient::Post(std::string_view target, const FormBody& form, std::string& body) {
    // A token the server stopped accepting is replaced once; a second refusal stands.
    for (int attempt = 0;; ++attempt) {
        if (editToken_.empty() && !FetchEditToken()) {
            return false;
        }
        FormBody withToken = form;
        withToken.Add("T", editToken_);
        GReaderAnswer answer = Request(target, &withToken.text());
        if (attempt == 0 && answer.arrived && answer.status == 401) {
            editToken_.clear();
            continue;
        }
        return Accept(answer, body);
    }
}

bool GReaderClient::ListSubscriptions(std::vector<ServerSubscription>& subscriptions) {
    Begin();
    subscriptions.clear();
    std::string body;
    if (!Get("subscription/list?output=json", body)) {
        return false;
    }
    return ReadSubscriptionList(body, subscriptions) || Unreadable();
}

bool GReaderClient::Subscribe(std::u16string_view url, std::u16string_view title,
                              std::u16string_view label) {
    Begin();
    FormBody form;
    form.Add("ac", "subscribe").Add("s", u"feed/" + std::u16string(url)).Add("t", title);
    if (!label.empty()) {
        form.Add("a", u"user/-/label/" + std::u16string(label));
    }
    std::string body;
    return Post("subscription/edit", form, body);
}

bool GReaderClient::Unsubscribe(std::string_view streamId) {
    Begin();
    FormBody form;
    form.Add("ac", "unsubscribe").Add("s", streamId);
    std::string body;
    return Post("subscription/edit", form, body);
}

bool GReaderClient::ListItemIds(bool unreadOnly, std::vector<uint64_t>& ids) {
    Begin();
    ids.clear();
    std::string continuation;
    do {
        FormBody query;
        query.Add("output", "json").Add("s", kReadingList).Add("n", "1000");
        if (unreadOnly) {
            query.Add("xt", kReadState);
        }
        if (!continuation.empty()) {
            query.Add("c", continuation);
        }
        std::string body;
        std::string next;
        if (!Get("stream/items/ids?" + query.text(), body)) {
            return false;
        }
        if (!ReadItemIdPage(body, ids, next)) {
            return Unreadable();
        }
        // A server that hands back the same continuation would otherwise be asked forever.
        if (next == continuation) {
            break;
        }
        continuation = std::move(next);
    } while (!continuation.empty());
    return true;
}

bool GReaderClient::FetchItems(std::span<const uint64_t> ids, std::vector<ServerItem>& items) {
    Begin();
    items.clear();
    for (std::size_t at = 0; at < ids.size(); at += kBatchSize) {
        FormBody form;
        for (const uint64_t id : ids.subspan(at, std::min(kBatchSize, ids.size() - at))) {
            form.Add("i", LongItemId(id));
        }
        std::string body;
        if (!Post("stream/items/contents", form, body)) {
            return false;
        }
        if (!ReadItemContents(body, items)) {
            return Unreadable();
        }
    }
    return true;
}

bool GReaderClient::MarkItems(std::span<const uint64_t> ids, bool read) {
    Begin();
    for (std::size_t at = 0; at < ids.size(); at += kBatchSize) {
        FormBody form;
        form.Add(read ? "a" : "r", kReadState);
        for (const uint64_t id : ids.subspan(at, std::min(kBatchSize, ids.size() - at))) {
            form.Add("i", LongItemId(id));
        }
        std::string body;
        if (!Post("edit-tag", form, body)) {
            return false;
        }
    }
    return true;
}

} // namespace qf
