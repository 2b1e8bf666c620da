#include "CliFixture.h"
#include "platform/Text.h"
#include "support/TestServer.h"

#include <chrono>
#include <csignal>
#include <nlohmann/json.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qf {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

std::string Rss(const std::string& title, int count) {
    std::string feed =
        "<?xml version=\"1.0\"?><rss version=\"2.0\"><channel><title>" + title + "</title>";
    for (int i = 0; i < count; ++i) {
        feed += "<item><title>" + title + " " + std::to_string(i) +
                "</title><link>http://example.org/" + title + "/" + std::to_string(i) +
                "</link><pubDate>Fri, 15 Mar 2024 08:00:00 GMT</pubDate></item>";
    }
    return feed + "</channel></rss>";
}

// A fresh user whose subscriptions point at a local server.
class RefreshCommandTest : public test::CliFixture {
protected:
    // Subscribes, through an imported OPML file, to one channel per path in category "News".
    void Subscribe(const std::vector<std::pair<std::string, std::string>>& channels) {
        std::string opml = "<?xml version=\"1.0\"?><opml version=\"1.0\"><body><outline "
                           "text=\"News\">";
        for (const auto& [title, path] : channels) {
            opml += "<outline text=\"" + title + "\" xmlUrl=\"" + Utf16ToUtf8(server.url(path)) +
                    "\"/>";
        }
        test::WriteFileBytes(dir / "subscriptions.opml", opml + "</outline></body></opml>");
        ASSERT_EQ(Cli({"import", (dir / "subscriptions.opml").string()}).exitCode, 0);
    }
    std::filesystem::path CachedFeed(int id) const {
        return dir / "data/QFChannelsData" / ("Channel" + std::to_string(id) + ".xml");
    }

    test::EnvVar noProxy{"no_proxy", "*"};
    test::TestServer server;
};

TEST_F(RefreshCommandTest, ImportFollowedByRefreshAllFillsEveryChannel) {
    Subscribe({{"Alpha", "/alpha"}, {"Beta", "/beta"}, {"Gamma", "/gamma"}});
    server.addRoute({.path = "/alpha", .body = Rss("Alpha", 2), .headers = {{"ETag", "\"a1\""}}});
    server.addRoute({.path = "/beta", .body = Rss("Beta", 3)});
    server.addRoute({.path = "/gamma", .body = Rss("Gamma", 4)});

    const auto refresh = Cli({"refresh", "--all"});
    EXPECT_EQ(refresh.exitCode, 0) << refresh.err;
    EXPECT_EQ(refresh.out, "Alpha: 2 items, 2 unread\nBeta: 3 items, 3 unread\n"
                           "Gamma: 4 items, 4 unread\n");
    // Standard error is no terminal here: no progress line.
    EXPECT_EQ(refresh.err, "");

    const auto list = nlohmann::json::parse(Cli({"list", "--json"}).out);
    const auto& channels = list["categories"][0]["channels"];
    ASSERT_EQ(channels.size(), 3u);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(channels[i]["itemCount"], 2 + i);
        EXPECT_EQ(channels[i]["state"], 0);
        EXPECT_TRUE(std::filesystem::exists(CachedFeed(i + 1)));
        EXPECT_EQ(channels[i]["etag"], i == 0 ? "\"a1\"" : "");
        EXPECT_EQ(channels[i]["lastModified"], "");
        EXPECT_EQ(channels[i]["notBefore"], "");
        EXPECT_EQ(channels[i]["freshUntil"], "");
        EXPECT_EQ(channels[i]["gone"], false);
    }
    EXPECT_NE(list["updateDate"], "");

    // The second time Alpha's server says that nothing changed.
    const auto again = nlohmann::json::parse(Cli({"refresh", "--json", "1", "2"}).out);
    EXPECT_EQ(again["channels"][0]["notModified"], true);
    EXPECT_EQ(again["channels"][0]["itemCount"], 2);
    EXPECT_EQ(again["channels"][1]["notModified"], false);
}

TEST_F(RefreshCommandTest, ChosenChannelsReportEachOutcomeAndFailuresExitWithOne) {
    Subscribe({{"Alpha", "/alpha"}, {"Gone", "/gone"}});
    server.addRoute({.path = "/alpha", .body = Rss("Alpha", 2)});

    const auto text = Cli({"refresh", "2", "1"});
    EXPECT_EQ(text.exitCode, 1);
    EXPECT_THAT(text.out, StartsWith("Gone: Failed to download the channel; Error code: 404 ("));
    EXPECT_THAT(text.out, HasSubstr(")\nAlpha: 2 items, 2 unread\n"));

    const auto json = Cli({"refresh", "--json", "1", "2"});
    EXPECT_EQ(json.exitCode, 1);
    const auto summary = nlohmann::json::parse(json.out);
    EXPECT_EQ(summary["stopped"], false);
    ASSERT_EQ(summary["channels"].size(), 2u);
    EXPECT_EQ(summary["channels"][0]["id"], 1);
    EXPECT_EQ(summary["channels"][0]["updated"], true);
    EXPECT_EQ(summary["channels"][0]["newItemCount"], 2);
    EXPECT_TRUE(summary["channels"][0]["errorText"].is_null());
    EXPECT_EQ(summary["channels"][1]["updated"], false);
    EXPECT_THAT(summary["channels"][1]["errorText"].get<std::string>(),
                StartsWith("Failed to download the channel; Error code: 404@"));

    EXPECT_EQ(Cli({"refresh", "--all", "--json"}).exitCode, 1);
    server.addRoute({.path = "/gone", .body = Rss("Gone", 1)});
    EXPECT_EQ(Cli({"refresh", "--all"}).exitCode, 0);
    EXPECT_EQ(Cli({"refresh", "7"}).exitCode, 1);
    EXPECT_EQ(Cli({"refresh"}).exitCode, 2);
    EXPECT_EQ(Cli({"refresh", "--all", "1"}).exitCode, 2);
}

// The server has Slow's request and never answers; its time-out would take 30 seconds.
TEST_F(RefreshCommandTest, CtrlCStopsTheRefreshAtOnceAndLosesNothing) {
    Subscribe({{"Slow", "/slow"}, {"Alpha", "/alpha"}});
    server.addRoute({.path = "/slow", .body = Rss("Slow", 2)});
    server.addRoute({.path = "/alpha", .body = Rss("Alpha", 3)});
    ASSERT_EQ(Cli({"refresh", "--all"}).exitCode, 0);
    // The first story of Alpha was read in an earlier run.
    std::string alpha = test::ReadFileBytes(CachedFeed(2));
    alpha.replace(alpha.find("<item>"), 6, "<item qf_wasRead=\"yes\">");
    test::WriteFileBytes(CachedFeed(2), alpha);
    const std::string slowBefore = test::ReadFileBytes(CachedFeed(1));
    server.addRoute({.path = "/slow", .mode = test::Route::Body::Silent});

    test::ChildProcess refresh(QF_CLI_PATH, {"refresh", "--all"});
    ASSERT_TRUE(server.awaitHits("/slow", 2));
    const auto interrupted = std::chrono::steady_clock::now();
    refresh.Signal(SIGINT);
    const auto result = refresh.Wait();

    EXPECT_LT(std::chrono::steady_clock::now() - interrupted, std::chrono::seconds(15));
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, HasSubstr("Refresh stopped."));
    // Stopped before its answer, Slow is neither updated nor failed.
    EXPECT_THAT(result.out, Not(HasSubstr("Slow")));
    EXPECT_EQ(test::ReadFileBytes(CachedFeed(1)), slowBefore);
    EXPECT_THAT(test::ReadFileBytes(CachedFeed(2)), HasSubstr("qf_wasRead=\"yes\""));
    const auto list = nlohmann::json::parse(Cli({"list", "--json"}).out);
    const auto& channels = list["categories"][0]["channels"];
    ASSERT_EQ(channels.size(), 2u);
    EXPECT_EQ(channels[0]["state"], 0);
    EXPECT_TRUE(channels[0]["errorText"].is_null());
    EXPECT_EQ(channels[0]["itemCount"], 2);
}

} // namespace
} // namespace qf
