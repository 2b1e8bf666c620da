#include "CliFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qf {
namespace {

using ::testing::HasSubstr;

constexpr std::string_view kFeed =
    "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\n"
    "<rss><channel><title>News</title>"
    "<item><title>One</title><description>Hello &lt;b&gt;world&lt;/b&gt;</description>"
    "<pubDate>Mon, 22 Oct 2007 22:16:44 GMT</pubDate></item>"
    "<item><title>Two</title></item></channel></rss>\n";

class PageCommandTest : public test::CliFixture {
protected:
    void SetUp() override { test::WriteFileBytes(feed, std::string(kFeed)); }
    test::ProgramResult Page(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"page", feed.string()});
        return Cli(arguments);
    }

    std::filesystem::path feed = dir / "feed.xml";
};

TEST_F(PageCommandTest, StoryAndBannerPagesAndTheirMalformedRequests) {
    const auto page = Page({"--story", "0"});
    EXPECT_EQ(page.exitCode, 0);
    EXPECT_THAT(page.out, HasSubstr("charset=windows-1251"));
    EXPECT_THAT(page.out, HasSubstr("<td>Hello <b>world</b></td>"));
    EXPECT_THAT(page.out, HasSubstr("Published: 10/22/07 10:16 PM"));
    EXPECT_EQ(page.out.substr(page.out.size() - 8), "</html>\n");
    // A story without text, or outside the feed, has no page.
    EXPECT_EQ(Page({"--story", "1"}).exitCode, 1);
    EXPECT_EQ(Page({"--story", "2"}).exitCode, 1);

    const auto banner = Page({"--banner", "240x40"});
    EXPECT_EQ(banner.exitCode, 0);
    EXPECT_THAT(banner.out, HasSubstr("<td height=\"36\"><b><font color=\"#6898C8\">News</font>"));
    EXPECT_EQ(Page({"--banner", "240"}).exitCode, 2);
    EXPECT_EQ(Page({"--smartphone", "--story", "0"}).exitCode, 2);
    EXPECT_EQ(Page({}).exitCode, 2);
}

} // namespace
} // namespace qf
