#include "sync/GReaderClient.h"

#include "platform/Text.h"
#include "support/GReaderServer.h"
#include "support/TestEnv.h"
#include "support/TestServer.h"
#include "sync/GReaderJson.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>

#include <gtest/gtest.h>

namespace qf {
namespace {

using test::GReaderDialect;

constexpr char kIds[] = "/reader/api/0/stream/items/ids";
constexpr char kLoginGone[] = "The server no longer accepts the login; log in again.";

std::vector<uint64_t> IdsOf(std::initializer_list<std::string> decimals) {
    std::vector<uint64_t> ids;
    for (const auto& text : decimals) {
        uint64_t id = 0;
        EXPECT_TRUE(ParseItemId(text, id)) << text;
        ids.push_back(id);
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}

std::vector<uint64_t> Sorted(std::vector<uint64_t> ids) {
    std::sort(ids.begin(), ids.end());
    return ids;
}

class GReaderClientTest : public ::testing::Test {
protected:
    void SetUp() override { server.addUser("ann", "secret"); }

    // A client logged in as the first user; `stop` is asked during its requests.
    std::unique_ptr<GReaderClient> Client(GReaderClient::StopCheck stop = {}) {
        const LoginResult login = GReaderClient::Login(server.url("/"), u"ann", u"secret");
        EXPECT_TRUE(login.ok) << Utf16ToUtf8(login.reason);
        return std::make_unique<GReaderClient>(server.url(), login.authToken, std::move(stop));
    }

    // No proxy from the environment may stand between the tests and their server.
    test::EnvVar noProxy{"no_proxy", "*"};
    test::EnvVar noProxyUpper{"NO_PROXY", "*"};
    test::GReaderServer server;
};

TEST_F(GReaderClientTest, LoginRefusalsCarryTheServersReasonOrWhyNoAnswerCame) {
    EXPECT_EQ(GReaderClient::Login(server.url(), u"ann", u"wrong").reason, u"BadAuthentication");
    server.fail(1, 500);
    EXPECT_EQ(GReaderClient::Login(server.url(), u"ann", u"secret").reason, u"Injected failure");
    const auto closed = u"http://127.0.0.1:" + AsciiToUtf16(std::to_string(test::ClosedPort()));
    const LoginResult nobody = GReaderClient::Login(closed, u"ann", u"secret");
    EXPECT_FALSE(nobody.ok);
    EXPECT_EQ(nobody.reason, u"Cannot reach the server; Error code: 12029");
    EXPECT_FALSE(GReaderClient::Login(u"ftp://127.0.0.1/", u"ann", u"secret").ok);
    // The password leaves only in the form body, encoded.
    server.addUser("zoë", "p&ss=wörd");
    EXPECT_TRUE(GReaderClient::Login(server.url(), u"zoë", u"p&ss=wörd").ok);
}

// The same round trip whichever way the server writes ids, streams, continuations and labels.
TEST_F(GReaderClientTest, RoundTripWorksInEveryDialect) {
    for (const GReaderDialect& dialect :
         {GReaderDialect{}, GReaderDialect{"decimal", "url", "opaque", "number"},
          GReaderDialect{"long", "url", "opaque", "number"}}) {
        SCOPED_TRACE(dialect.ids + " " + dialect.streams);
        server.setDialect(dialect);
        server.addFeed("https://a.example/feed", "A", "News");
        server.addFeed("https://b.example/feed", "B");
        const auto client = Client();

        std::vector<ServerSubscription> subscriptions;
        ASSERT_TRUE(client->ListSubscriptions(subscriptions)) << Utf16ToUtf8(client->errorText());
        ASSERT_EQ(subscriptions.size(), 2u);
        EXPECT_EQ(subscriptions[0].url, u"https://a.example/feed");
        EXPECT_EQ(subscriptions[0].title, u"A");
        EXPECT_EQ(subscriptions[0].label, u"News");
        EXPECT_EQ(subscriptions[1].label, u"");
        EXPECT_EQ(subscriptions[0].streamId.starts_with("feed/https:"), dialect.streams == "url");

        ASSERT_TRUE(client->Subscribe(u"https://c.example/feed", u"Ça & co", u"Tech"));
        ASSERT_TRUE(client->Unsubscribe(subscriptions[1].streamId));
        const auto feeds = server.subscriptions();
        ASSERT_EQ(feeds.size(), 2u);
        EXPECT_EQ(feeds[1].title, "Ça & co");
        EXPECT_EQ(feeds[1].labels, std::vector<std::string>{"Tech"});

        // Ids of 2^63 and above travel as negative decimals.
        const std::string unread = server.addItem("https://a.example/feed", "https://a/1", false);
        const std::string high =
            server.addItem("https://a.example/feed", "https://a/2", false, "9223372036854775813");
        const std::string read = server.addItem("https://a.example/feed", "https://a/3", true);
        std::vector<uint64_t> ids;
        ASSERT_TRUE(client->ListItemIds(true, ids));
        EXPECT_EQ(Sorted(ids), IdsOf({unread, high}));
        ASSERT_TRUE(client->ListItemIds(false, ids));
        EXPECT_EQ(Sorted(ids), IdsOf({unread, high, read}));

        std::vector<ServerItem> items;
        ASSERT_TRUE(client->FetchItems(IdsOf({high, read}), items));
        ASSERT_EQ(items.size(), 2u);
        std::sort(items.begin(), items.end(), [](auto& a, auto& b) { return a.id < b.id; });
        EXPECT_EQ(items[0].link, u"https://a/3");
        EXPECT_TRUE(items[0].read);
        EXPECT_EQ(items[1].link, u"https://a/2");
        EXPECT_FALSE(items[1].read);
        EXPECT_EQ(items[1].streamId, subscriptions[0].streamId);

        ASSERT_TRUE(client->MarkItems(IdsOf({unread, high}), true));
        ASSERT_TRUE(client->MarkItems(IdsOf({read}), false));
        EXPECT_EQ(server.state("https://a/1") + server.state("https://a/2"), "readread");
        EXPECT_EQ(server.state("https://a/3"), "unread");
        server.unsubscribe("https://a.example/feed");
        server.unsubscribe("https://c.example/feed");
    }
}

TEST_F(GReaderClientTest, LongListsArePagedAndSentInBatches) {
    server.addFeed("https://a.example/feed", "A");
    server.addItems("https://a.example/feed", 2300, false);
    for (const std::string kind : {"numeric", "opaque"}) {
        server.setDialect({.continuation = kind});
        const int before = server.hits(kIds);
        const auto client = Client();
        std::vector<uint64_t> ids;
        ASSERT_TRUE(client->ListItemIds(true, ids));
        EXPECT_EQ(ids.size(), 2300u);
        EXPECT_EQ(server.hits(kIds) - before, 3);
    }
    const auto client = Client();
    std::vector<uint64_t> ids;
    ASSERT_TRUE(client->ListItemIds(true, ids));
    std::vector<ServerItem> items;
    ASSERT_TRUE(client->FetchItems(ids, items));
    EXPECT_EQ(items.size(), 2300u);
    ASSERT_TRUE(client->MarkItems(ids, true));
    EXPECT_EQ(server.readIds().size(), 2300u);
    EXPECT_EQ(server.hits("/reader/api/0/edit-tag"), 10);
}

TEST_F(GReaderClientTest, RefusedEditTokenIsRenewedOnceButARefusedLoginEndsTheSync) {
    server.addFeed("https://a.example/feed", "A");
    const auto client = Client();
    ASSERT_TRUE(client->Subscribe(u"https://b.example/feed", u"B", u""));
    server.expire("token");
    ASSERT_TRUE(client->Subscribe(u"https://c.example/feed", u"C", u""))
        << Utf16ToUtf8(client->errorText());
    EXPECT_EQ(server.hits("/reader/api/0/token"), 2);
    EXPECT_EQ(server.hits("/reader/api/0/subscription/edit"), 3);

    server.fail(1, 500);
    std::vector<ServerSubscription> subscriptions;
    EXPECT_FALSE(client->ListSubscriptions(subscriptions));
    EXPECT_FALSE(client->loginRejected());
    EXPECT_EQ(client->errorText(), u"The server answered with status 500.");

    server.expire("auth");
    EXPECT_FALSE(client->ListSubscriptions(subscriptions));
    EXPECT_TRUE(client->loginRejected());
    EXPECT_EQ(Utf16ToUtf8(client->errorText()), kLoginGone);
    EXPECT_FALSE(client->MarkItems(IdsOf({"1000"}), true));
    EXPECT_TRUE(client->loginRejected());
}

// The stop check turns true once the hung request has reached the server.
TEST_F(GReaderClientTest, StopEndsARequestTheServerNeverAnswers) {
    const auto client = Client([this] { return server.hits(kIds) > 0; });
    server.hang(1);
    const auto started = std::chrono::steady_clock::now();
    std::vector<uint64_t> ids;
    EXPECT_FALSE(client->ListItemIds(false, ids));
    EXPECT_TRUE(client->stopped());
    EXPECT_FALSE(client->loginRejected());
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(10));
}

TEST(GReaderItemId, BothFormsAreReadAndAnythingElseRefused) {
    const std::string prefix = "tag:google.com,2005:reader/item/";
    const std::pair<std::string, uint64_t> good[] = {
        {"1000", 1000},
        {"-1", UINT64_MAX},
        {"-9223372036854775808", uint64_t{1} << 63},
        {prefix + "00000000000003e8", 1000},
        {prefix + "FFFFFFFFFFFFFFFF", UINT64_MAX},
        {prefix + "3e8", 1000},
    };
    for (const auto& [text, expected] : good) {
        uint64_t id = 0;
        EXPECT_TRUE(ParseItemId(text, id)) << text;
        EXPECT_EQ(id, expected) << text;
    }
    for (const std::string& bad :
         std::vector<std::string>{"", "12a", "+5", "0x10", "18446744073709551616", prefix,
                                  prefix + "-1", prefix + "10000000000000000"}) {
        uint64_t id = 7;
        EXPECT_FALSE(ParseItemId(bad, id)) << bad;
        EXPECT_EQ(id, 7u);
    }
    EXPECT_EQ(LongItemId(1000), prefix + "00000000000003e8");
}

// Answers of the wrong shape fail without throwing; entries missing what is needed are skipped.
TEST(GReaderJson, MalformedAnswersAreRefusedAndIncompleteEntriesSkipped) {
    std::vector<ServerSubscription> subscriptions;
    std::vector<uint64_t> ids;
    std::vector<ServerItem> items;
    std::string continuation;
    for (const char* bad : {"", "[]", "<html>", "{\"subscriptions\":3}", "{\"a\":\"\xff\"}"}) {
        EXPECT_FALSE(ReadSubscriptionList(bad, subscriptions)) << bad;
    }
    EXPECT_FALSE(ReadItemIdPage("{\"itemRefs\":{}}", ids, continuation));
    EXPECT_FALSE(ReadItemContents("{\"items\":\"x\"}", items));

    ASSERT_TRUE(ReadSubscriptionList(
        R"({"subscriptions":[{"id":5},{"id":"feed/1","url":"u","categories":[{"id":"user/9/label/Ça"}]}]})",
        subscriptions));
    ASSERT_EQ(subscriptions.size(), 1u);
    EXPECT_EQ(subscriptions[0].label, u"Ça");
    ASSERT_TRUE(ReadItemIdPage(R"({"itemRefs":[{"id":"x"},{"id":"7"}],"continuation":20})", ids,
                               continuation));
    EXPECT_EQ(ids, std::vector<uint64_t>{7});
    EXPECT_EQ(continuation, "20");
    ASSERT_TRUE(ReadItemContents(
        R"({"items":[{"id":"1","alternate":[{"href":"l"}],"categories":["user/9/state/com.google/read"]}]})",
        items));
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].link, u"l");
    EXPECT_TRUE(items[0].read);
    EXPECT_EQ(JsonErrorMessage(R"({"error_message":"access unauthorized"})"),
              "access unauthorized");
}

} // namespace
} // namespace qf
