#include "CliFixture.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qf {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

// Four stories, the first one read; the third has no link, only a guid, and the fourth shares the
// second's link.
constexpr std::string_view kFeed =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
    "<rss><channel><title>T</title><image><url>http://a.example/logo.png</url></image>"
    "<item qf_wasRead=\"yes\"><title>One</title><link>http://a.example/1</link>"
    "<pubDate>Mon, 22 Oct 2007 22:16:44 GMT</pubDate></item>"
    "<item><title>Two</title><link>http://a.example/2</link></item>"
    "<item><title>Three</title><guid isPermaLink=\"false\">urn:a:3</guid></item>"
    "<item><title>Four</title><link>http://a.example/2</link></item></channel></rss>\n";

// A fresh user with one channel (id 1) whose feed is cached, and one (id 2) never downloaded.
class ReadingCommandsTest : public test::CliFixture {
protected:
    void SetUp() override {
        ASSERT_EQ(Cli({"add", "http://a.example/rss", "A"}).out, "1\n");
        ASSERT_EQ(Cli({"add", "http://b.example/rss", "B"}).out, "2\n");
        fs::create_directories(Data());
        test::WriteFileBytes(Data() / "Channel1.xml", std::string(kFeed));
    }
    fs::path Data() const { return dir / "data/QFChannelsData"; }
    std::string WriteFile(const std::string& name, const std::string& bytes) const {
        test::WriteFileBytes(dir / name, bytes);
        return (dir / name).string();
    }
    std::string CachedFeed() const { return test::ReadFileBytes(Data() / "Channel1.xml"); }
};

TEST_F(ReadingCommandsTest, ShowListsHeadlinesFromTheCachedFeed) {
    const auto text = Cli({"show", "1"});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_EQ(text.out, "   1   10/22/07 10:16 PM  One\n"
                        "   2 *                    Two\n"
                        "   3 *                    Three\n"
                        "   4 *                    Four\n");

    const auto json = nlohmann::json::parse(Cli({"show", "1", "--unread", "--json"}).out);
    ASSERT_EQ(json["items"].size(), 3u);
    EXPECT_EQ(json["items"][0], nlohmann::json::parse(R"({"title": "Two",
        "link": "http://a.example/2", "description": null, "date": "", "read": 0,
        "codePage": 0})"));

    const auto notDownloaded = Cli({"show", "2"});
    EXPECT_EQ(notDownloaded.exitCode, 1);
    EXPECT_THAT(notDownloaded.err, HasSubstr("not been downloaded"));
    EXPECT_EQ(Cli({"show", "7"}).exitCode, 1);
    EXPECT_EQ(Cli({"show", "one"}).exitCode, 2);
}

TEST_F(ReadingCommandsTest, MarkWritesReadStatesIntoTheCachedFeedAndCounts) {
    EXPECT_EQ(Cli({"mark", "1", "2", "3", "--read"}).exitCode, 0);
    EXPECT_THAT(CachedFeed(), HasSubstr("<item qf_wasRead=\"yes\"><title>Two"));
    EXPECT_THAT(CachedFeed(), HasSubstr("<item qf_wasRead=\"yes\"><title>Three"));
    EXPECT_THAT(CachedFeed(), HasSubstr("<item qf_wasRead=\"no\"><title>Four"));
    EXPECT_THAT(Cli({"list"}).out, HasSubstr("  1  A  1/4\n"));
    // Each later run reads back the state of the story without a link and of the two sharing one.
    EXPECT_EQ(Cli({"show", "1", "--unread"}).out, "   4 *                    Four\n");
    EXPECT_EQ(Cli({"mark", "1", "4", "--read"}).exitCode, 0);
    EXPECT_EQ(Cli({"mark", "1", "2", "--unread"}).exitCode, 0);
    EXPECT_EQ(Cli({"show", "1", "--unread"}).out, "   2 *                    Two\n");

    EXPECT_EQ(Cli({"mark", "1", "--unread"}).exitCode, 0);
    EXPECT_THAT(CachedFeed(), HasSubstr("<item qf_wasRead=\"no\"><title>One"));
    EXPECT_THAT(CachedFeed(), HasSubstr("<item qf_wasRead=\"no\"><title>Three"));
    EXPECT_THAT(Cli({"list"}).out, HasSubstr("  1  A  4/4\n"));

    const std::string before = CachedFeed();
    const auto outOfRange = Cli({"mark", "1", "1", "5", "--read"});
    EXPECT_EQ(outOfRange.exitCode, 1);
    EXPECT_THAT(outOfRange.err, HasSubstr("no story 5"));
    EXPECT_EQ(CachedFeed(), before);
    EXPECT_EQ(Cli({"mark", "1", "--read", "--unread"}).exitCode, 2);
    EXPECT_EQ(Cli({"mark", "1"}).exitCode, 2);
}

TEST_F(ReadingCommandsTest, RemoveDeletesTheFilesAndTheChannel) {
    test::WriteFileBytes(Data() / "Image1.png", "png");
    EXPECT_EQ(Cli({"remove", "1"}).exitCode, 0);
    EXPECT_FALSE(fs::exists(Data() / "Channel1.xml"));
    EXPECT_FALSE(fs::exists(Data() / "Image1.png"));
    EXPECT_EQ(Cli({"list"}).out, "Default\n  2  B  0/0\n");
    EXPECT_EQ(Cli({"remove", "2"}).exitCode, 0);
    EXPECT_EQ(Cli({"remove", "2"}).exitCode, 1);
}

TEST_F(ReadingCommandsTest, ParseJsonGivesTheFeedAndEveryStory) {
    const std::string file = WriteFile(
        "feed.xml", "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\n"
                    "<rss><channel><title>\xCD\xEE\xE2\xEE\xF1\xF2\xE8</title>"
                    "<lastBuildDate>Mon, 22 Oct 2007 22:16:44 GMT</lastBuildDate>"
                    "<image><url>http://a/l.png</url><width>88</width></image>"
                    "<language>ja</language><item qf_wasRead=\"yes\"><title>A</title>"
                    "<link>http://a/1</link><pubDate>Tue, 23 Oct 2007 08:00:00 GMT</pubDate>"
                    "</item><item><description>d</description></item></channel></rss>");
    const auto result = Cli({"parse", file, "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const auto json = nlohmann::json::parse(result.out);
    EXPECT_EQ(json["feedType"], 2);
    EXPECT_EQ(json["title"], "\xD0\x9D\xD0\xBE\xD0\xB2\xD0\xBE\xD1\x81\xD1\x82\xD0\xB8");
    EXPECT_EQ(json["lastBuildDate"], "Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_EQ(json["encoding"], "windows-932"); // the language overrides the declaration
    EXPECT_EQ(json["codePage"], 1251);
    EXPECT_EQ(json["image"], nlohmann::json::parse(R"({"title": null, "url": "http://a/l.png",
        "localFile": "Image0.png", "width": 88, "height": 0})"));
    EXPECT_EQ(json["itemCount"], 2);
    EXPECT_EQ(json["newItemCount"], 1);
    EXPECT_EQ(json["items"][0], nlohmann::json::parse(R"({"title": "A", "link": "http://a/1",
        "description": null, "date": "Tue, 23 Oct 2007 08:00:00 GMT", "read": 1,
        "codePage": 932})"));
    EXPECT_EQ(json["items"][1]["title"], nullptr);
    EXPECT_EQ(json["items"][1]["date"], "");
}

TEST_F(ReadingCommandsTest, ParseOfAFileThatIsNoFeedFailsWithTheChannelError) {
    for (const auto& [name, bytes] : std::vector<std::pair<std::string, std::string>>{
             {"page.html", "<html><body>feed</body></html>"},
             {"broken.xml", "<?xml version=\"1.0\"?><rss><channel>"},
             {"plain.txt", "nothing here"}}) {
        const auto result = Cli({"parse", WriteFile(name, bytes)});
        EXPECT_EQ(result.exitCode, 1) << name;
        EXPECT_EQ(result.err, "Failed to parse the channel\n") << name;
        EXPECT_EQ(result.out, "") << name;
    }
    EXPECT_EQ(Cli({"parse", (dir / "missing.xml").string()}).exitCode, 1);
    EXPECT_EQ(Cli({"parse"}).exitCode, 2);
}

} // namespace
} // namespace qf
