#include "CliFixture.h"
#include "platform/Text.h"
#include "support/GReaderServer.h"
#include "support/TestServer.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qf {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using Json = nlohmann::json;

std::string Rss(const std::string& name, int count) {
    std::string feed =
        "<?xml version=\"1.0\"?><rss version=\"2.0\"><channel><title>" + name + "</title>";
    for (int i = 0; i < count; ++i) {
        feed += "<item><title>" + name + " " + std::to_string(i) +
                "</title><link>http://example.org/" + name + "/" + std::to_string(i) +
                "</link></item>";
    }
    return feed + "</channel></rss>";
}

std::string Link(const std::string& name, int index) {
    return "http://example.org/" + name + "/" + std::to_string(index);
}

// A user with an account on a Google Reader API server, and feeds that both sides read from a
// second server.
class SyncCommandTest : public test::CliFixture {
protected:
    void SetUp() override {
        reader.addUser("alice", "secret");
        for (const std::string name : {"alpha", "beta", "gamma"}) {
            feeds.addRoute({.path = "/" + name, .body = Rss(name, 3)});
        }
    }

    test::ProgramResult CliWithInput(const std::vector<std::string>& arguments,
                                     const std::string& input) const {
        return test::ChildProcess(QF_CLI_PATH, arguments, input).Wait();
    }
    void LogIn() const {
        const auto login = CliWithInput({"account", "login", Server(), "alice"}, "secret\n");
        ASSERT_EQ(login.exitCode, 0) << login.err;
    }
    std::string Server() const { return Utf16ToUtf8(reader.url()); }
    std::string Feed(const std::string& name) const { return Utf16ToUtf8(feeds.url("/" + name)); }

    // One sync, its JSON counts.
    Json Sync(int expectedExit = 0) const {
        const auto sync = Cli({"sync", "--json"});
        EXPECT_EQ(sync.exitCode, expectedExit) << sync.err << sync.out;
        return Json::parse(sync.out);
    }
    static void ExpectCounts(const Json& counts, int addedLocally, int addedOnServer,
                             int removedLocally, int removedOnServer, int sent, int received) {
        EXPECT_EQ(counts["subscriptions"]["addedLocally"], addedLocally) << counts;
        EXPECT_EQ(counts["subscriptions"]["addedOnServer"], addedOnServer) << counts;
        EXPECT_EQ(counts["subscriptions"]["removedLocally"], removedLocally) << counts;
        EXPECT_EQ(counts["subscriptions"]["removedOnServer"], removedOnServer) << counts;
        EXPECT_EQ(counts["readStates"]["sent"], sent) << counts;
        EXPECT_EQ(counts["readStates"]["received"], received) << counts;
    }
    Json Categories() const { return Json::parse(Cli({"list", "--json"}).out)["categories"]; }
    // The ids of the channels in list order.
    std::vector<int> ChannelIds() const {
        std::vector<int> ids;
        const Json categories = Categories();
        for (const auto& category : categories) {
            for (const auto& channel : category["channels"]) {
                ids.push_back(channel["id"].get<int>());
            }
        }
        return ids;
    }
    bool ServerHas(const std::string& url) {
        const auto listed = reader.subscriptions();
        return std::any_of(listed.begin(), listed.end(),
                           [&](const auto& feed) { return feed.url == url; });
    }
    std::filesystem::path SettingsFile() const { return dir / "config/Orvelcraft/Quillfeed.conf"; }

    test::EnvVar noProxy{"no_proxy", "*"};
    test::GReaderServer reader;
    test::TestServer feeds;
};

TEST_F(SyncCommandTest, LoginKeepsTheTokenOwnerOnlyAndARefusalKeepsNothing) {
    const auto refused = CliWithInput({"account", "login", Server(), "alice"}, "wrong\n");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.err, StartsWith("Login failed: "));
    EXPECT_THAT(refused.err, HasSubstr("BadAuthentication"));
    EXPECT_EQ(Cli({"account"}).exitCode, 1);

    LogIn();
    const auto shown = Cli({"account"});
    EXPECT_EQ(shown.out, "Server: " + Server() + "\nUser: alice\n");
    const std::string settings = test::ReadFileBytes(SettingsFile());
    EXPECT_THAT(settings, HasSubstr("[Sync]"));
    EXPECT_THAT(settings, HasSubstr("Auth="));
    EXPECT_THAT(settings, Not(HasSubstr("secret")));
    struct stat info {};
    ASSERT_EQ(::stat(SettingsFile().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);

    EXPECT_EQ(Cli({"account", "logout"}).exitCode, 0);
    EXPECT_EQ(Cli({"account"}).exitCode, 1);
    const auto sync = Cli({"sync"});
    EXPECT_EQ(sync.exitCode, 1);
    EXPECT_EQ(reader.hits("/reader/api/0/subscription/list"), 0);
}

TEST_F(SyncCommandTest, FirstSyncJoinsBothSidesAndTheSecondFindsNothingToDo) {
    reader.addFeed(Feed("alpha"), "Alpha", "Tech");
    reader.addFeed(Feed("beta") + "/", "Beta", "");
    ASSERT_EQ(Cli({"add", Feed("gamma"), "Gamma"}).exitCode, 0);
    ASSERT_EQ(Cli({"add", Feed("BETA")}).exitCode, 0); // the same feed as the server's Beta
    LogIn();

    ExpectCounts(Sync(), 1, 1, 0, 0, 0, 0);
    std::map<std::string, std::string> categoryOf;
    const Json categories = Categories();
    for (const auto& category : categories) {
        for (const auto& channel : category["channels"]) {
            categoryOf[channel["title"].get<std::string>()] = category["name"].get<std::string>();
        }
    }
    EXPECT_EQ(categoryOf["Alpha"], "Tech");
    EXPECT_EQ(categoryOf.size(), 3u);
    EXPECT_TRUE(ServerHas(Feed("gamma")));

    ExpectCounts(Sync(), 0, 0, 0, 0, 0, 0);
}

TEST_F(SyncCommandTest, ReadStatesTravelBothWaysAndTheLaterChangeWins) {
    reader.addFeed(Feed("alpha"), "Alpha", "");
    reader.addItem(Feed("alpha"), Link("alpha", 0), true);
    const std::string second = reader.addItem(Feed("alpha"), Link("alpha", 1), false);
    LogIn();
    Sync();
    const int id = ChannelIds().at(0);
    ASSERT_EQ(Cli({"refresh", std::to_string(id)}).exitCode, 0);

    ExpectCounts(Sync(), 0, 0, 0, 0, 0, 1); // story 0 read on the server
    EXPECT_THAT(Cli({"show", std::to_string(id), "--unread"}).out, Not(HasSubstr("alpha 0")));

    ASSERT_EQ(Cli({"mark", std::to_string(id), "2", "--read"}).exitCode, 0);
    ASSERT_EQ(Cli({"mark", std::to_string(id), "1", "--unread"}).exitCode, 0);
    ExpectCounts(Sync(), 0, 0, 0, 0, 2, 0);
    EXPECT_EQ(reader.state(Link("alpha", 1)), "read");
    EXPECT_EQ(reader.state(Link("alpha", 0)), "unread");

    reader.addItem(Feed("alpha"), Link("alpha", 1), false, second); // unread on another device
    ExpectCounts(Sync(), 0, 0, 0, 0, 0, 1);
    EXPECT_THAT(Cli({"show", std::to_string(id), "--unread"}).out, HasSubstr("alpha 1"));
}

TEST_F(SyncCommandTest, RemovalsFollowTheOtherSideUnlessUnreadStoriesRemain) {
    reader.addFeed(Feed("alpha"), "Alpha", "");
    reader.addFeed(Feed("beta"), "Beta", "");
    reader.addFeed(Feed("gamma"), "Gamma", "");
    LogIn();
    Sync();
    const std::vector<int> ids = ChannelIds();
    ASSERT_EQ(ids.size(), 3u);
    ASSERT_EQ(Cli({"refresh", "--all"}).exitCode, 0);
    ASSERT_EQ(Cli({"mark", std::to_string(ids[2]), "--read"}).exitCode, 0);

    ASSERT_EQ(Cli({"remove", std::to_string(ids[0])}).exitCode, 0);
    reader.unsubscribe(Feed("beta"));  // has unread stories: kept
    reader.unsubscribe(Feed("gamma")); // all read: removed here too
    const Json counts = Sync();
    ExpectCounts(counts, 0, 0, 1, 1, 0, 0);
    EXPECT_EQ(counts["subscriptions"]["kept"], 1);
    EXPECT_EQ(ChannelIds(), std::vector<int>{ids[1]});
    EXPECT_FALSE(ServerHas(Feed("alpha")));

    ASSERT_EQ(Cli({"mark", std::to_string(ids[1]), "--read"}).exitCode, 0);
    ExpectCounts(Sync(), 0, 0, 1, 0, 0, 0);
    EXPECT_TRUE(ChannelIds().empty());
}

TEST_F(SyncCommandTest, ChangesQueuedOfflineSurviveAFailedSync) {
    reader.addFeed(Feed("alpha"), "Alpha", "");
    reader.addItem(Feed("alpha"), Link("alpha", 2), false);
    LogIn();
    Sync();
    const int id = ChannelIds().at(0);
    ASSERT_EQ(Cli({"refresh", std::to_string(id)}).exitCode, 0);
    ASSERT_EQ(Cli({"mark", std::to_string(id), "--read"}).exitCode, 0);
    reader.addFeed(Feed("beta"), "Beta", "");
    const std::string storeBefore =
        test::ReadFileBytes(dir / "data/QFChannelsData/QFChannels.opml");

    reader.fail(1, 503);
    const auto failed = Cli({"sync"});
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_EQ(test::ReadFileBytes(dir / "data/QFChannelsData/QFChannels.opml"), storeBefore);
    EXPECT_EQ(reader.state(Link("alpha", 2)), "unread");

    ExpectCounts(Sync(), 1, 0, 0, 0, 1, 0);
    EXPECT_EQ(reader.state(Link("alpha", 2)), "read");
}

} // namespace
} // namespace qf
