#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qf {

class FormBody;
class HttpSession;
struct GReaderAnswer;

// A subscription as the server lists it.
struct ServerSubscription {
    // The stream id exactly as the server gave it ("feed/12" or "feed/<address>"), sent back as is.
    std::string streamId;
    // The feed's address (the list's "url" member, never taken from the id).
    std::u16string url;
    std::u16string title;
    // The name of the first label (folder) the subscription has; empty when none.
    std::u16string label;
};

// What the reader needs of one item: where it belongs, how to match it with a story, its state.
struct ServerItem {
    uint64_t id = 0;
    // The item's origin stream id.
    std::string streamId;
    // The item's canonical link, else its first alternate link; empty when it has neither.
    std::u16string link;
    bool read = false;
};

// The outcome of a login.
struct LoginResult {
    bool ok = false;
    std::string authToken;
    // Why the server refused, or why no answer came, when not ok.
    std::u16string reason;
};

// Reads an item id in either form the API uses: a signed decimal number, or
// "tag:google.com,2005:reader/item/" followed by up to 16 hex digits. False when it is neither.
bool ParseItemId(std::string_view text, uint64_t& id);
// The long form, which every server accepts.
std::string LongItemId(uint64_t id);

// A client of the Google Reader API as FreshRSS, Miniflux, Inoreader, The Old Reader and BazQux
// speak it, over one reused HTTP session with the feed requests' user agent, compression and
// certificate rules. Every call blocks; a stop request ends the call under way. A call that fails
// answers false and leaves its reason in errorText().
class GReaderClient {
public:
    // Asked before and during every request; true ends it.
    using StopCheck = std::function<bool()>;

    // `server` is the API's base address; paths such as "/reader/api/0/token" are appended to it.
    GReaderClient(std::u16string server, std::string authToken, StopCheck stop);
    ~GReaderClient();
    GReaderClient(const GReaderClient&) = delete;
    GReaderClient& operator=(const GReaderClient&) = delete;

    // ClientLogin with the user's name and password.
    static LoginResult Login(std::u16string_view server, std::u16string_view user,
                             std::u16string_view password, const StopCheck& stop = {});

    bool ListSubscriptions(std::vector<ServerSubscription>& subscriptions);
    // Subscribes to the feed at `url` under the label `label` (none when empty).
    bool Subscribe(std::u16string_view url, std::u16string_view title, std::u16string_view label);
    bool Unsubscribe(std::string_view streamId);
    // The ids of every item of the reading list, or only of its unread ones, all pages followed.
    bool ListItemIds(bool unreadOnly, std::vector<uint64_t>& ids);
    // The items with those ids, in batches small enough for every server.
    bool FetchItems(std::span<const uint64_t> ids, std::vector<ServerItem>& items);
    // Marks the items read or unread, in batches.
    bool MarkItems(std::span<const uint64_t> ids, bool read);

    // True after a failure because the server no longer accepts the login (the user must log in
    // again).
    bool loginRejected() const { return loginRejected_; }
    // True after a failure because a stop was requested.
    bool stopped() const { return stopped_; }
    const std::u16string& errorText() const { return errorText_; }

private:
    // Clears what the previous call left.
    void Begin();
    GReaderAnswer Request(std::string_view target, const std::string* form);
    // A GET under the API's path; a 401 means the login is gone.
    bool Get(std::string_view target, std::string& body);
    // A POST under the API's path with the edit token, fetched first when there is none and once
    // more when the server refuses the one it gave earlier.
    bool Post(std::string_view target, const FormBody& form, std::string& body);
    bool FetchEditToken();
    // Takes a 2xx answer's body; anything else is a failure with its reason.
    bool Accept(GReaderAnswer& answer, std::string& body);
    bool Fail(std::u16string text);
    bool Unreadable();

    std::u16string server_;
    std::string authToken_;
    StopCheck stop_;
    std::string editToken_;
    std::unique_ptr<HttpSession> session_;
    bool loginRejected_ = false;
    bool stopped_ = false;
    std::u16string errorText_;
};

} // namespace qf
