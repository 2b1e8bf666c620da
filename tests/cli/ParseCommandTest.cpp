#include "support/RunProgram.h"
#include "support/TestEnv.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

namespace qf {
namespace {

using test::RunProgram;

class ParseCommandTest : public ::testing::Test {
protected:
    std::string Write(const std::string& name, const std::string& bytes) const {
        test::WriteFileBytes(dir / name, bytes);
        return (dir / name).string();
    }

    test::TempDir dir;
    test::EnvVar zone{"TZ", "UTC"};
};

TEST_F(ParseCommandTest, JsonGivesTheChannelAndEveryStory) {
    const std::string file =
        Write("feed.xml", "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\n"
                          "<rss><channel><title>\xCD\xEE\xE2\xEE\xF1\xF2\xE8</title>"
                          "<lastBuildDate>Mon, 22 Oct 2007 22:16:44 GMT</lastBuildDate>"
                          "<image><url>http://a/l.png</url><width>88</width></image>"
                          "<language>ja</language><item qf_wasRead=\"yes\"><title>A</title>"
                          "<link>http://a/1</link><pubDate>Tue, 23 Oct 2007 08:00:00 GMT</pubDate>"
                          "</item><item><description>d</description></item></channel></rss>");
    const auto result = RunProgram(QF_CLI_PATH, {"parse", file, "--json"});
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

TEST_F(ParseCommandTest, SummaryListsHeadlinesWithTheirStateAndDate) {
    const std::string file =
        Write("atom.xml", "<feed xmlns=\"http://www.w3.org/2005/Atom\"><title>Blog</title>"
                          "<entry><title>Old</title><updated>2007-10-22T22:16:44Z</updated></entry>"
                          "<entry qf_wasRead=\"yes\"><title>Seen</title></entry></feed>");
    const auto result = RunProgram(QF_CLI_PATH, {"parse", file});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.out.find("Title: Blog\n"), std::string::npos);
    EXPECT_NE(result.out.find("Feed type: Atom\n"), std::string::npos);
    EXPECT_NE(result.out.find("   1 * 10/22/07 10:16 PM  Old\n"), std::string::npos);
    EXPECT_NE(result.out.find("   2                      Seen\n"), std::string::npos);
}

TEST_F(ParseCommandTest, FilesThatAreNoFeedFailWithTheChannelError) {
    for (const auto& [name, bytes] : std::vector<std::pair<std::string, std::string>>{
             {"page.html", "<html><body>feed</body></html>"},
             {"broken.xml", "<?xml version=\"1.0\"?><rss><channel>"},
             {"plain.txt", "nothing here"}}) {
        const auto result = RunProgram(QF_CLI_PATH, {"parse", Write(name, bytes)});
        EXPECT_EQ(result.exitCode, 1) << name;
        EXPECT_EQ(result.err, "Failed to parse the channel\n") << name;
        EXPECT_EQ(result.out, "") << name;
    }
    EXPECT_EQ(RunProgram(QF_CLI_PATH, {"parse", (dir / "missing.xml").string()}).exitCode, 1);
    EXPECT_EQ(RunProgram(QF_CLI_PATH, {"parse"}).exitCode, 2);
}

} // namespace
} // namespace qf
