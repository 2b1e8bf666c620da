#include "render/StoryPage.h"

#include "model/Channel.h"
#include "platform/FsPath.h"
#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

constexpr std::u16string_view kPageStart =
    u"<body bgColor=\"#ffffff\" leftMargin=\"2\" topMargin=\"2\" rightMargin=\"2\" "
    u"bottomMargin=\"2\"><table border=\"0\" cellPadding=\"0\" cellSpacing=\"0\">";
constexpr std::u16string_view kTitleBanner =
    u"<tr><td height =\"8\"></td></tr><tr><td><b><font color=\"#6898C8\">Daily Planet</font></b>"
    u"</td></tr><tr><td height =\"8\"></td></tr>";
constexpr std::u16string_view kDatedTail =
    u"</td></tr><tr><td height =\"8\"></td></tr>"
    u"<tr><td height =\"4\"></td></tr><tr><td><small><font color='#808080'>Published: "
    u"10/22/07 10:16 PM</font></small><br></td></tr></table></body></html>";

// A channel with a logo named but not yet downloaded, and a story with title, body and date, in a
// data folder of its own and a clock pinned to UTC.
class StoryPageTest : public ::testing::Test {
protected:
    StoryPageTest() : clock_(SystemTime{2007, 10, 1, 23, 9, 0, 0, 0}) {
        context_.dataFolder = FromFsPath(dataFolder_.path());
        channel_.SetTitle(WString(u"Daily Planet"));
        channel_.image().SetLocalFile(WString(u"Image7.gif"));
        item_.SetTitle(WString(u"Storm reaches coast"));
        item_.SetDescription(WString(u"<p>Winds of <i>120</i> km/h.</p>"));
        FeedDate date;
        date.Parse(std::u16string_view(u"Mon, 22 Oct 2007 22:16:44 GMT"));
        item_.SetDate(date);
    }

    std::u16string Page() { return BuildStoryPage(channel_, item_, context_).value_or(u"none"); }
    void PutLogoOnDisk() { test::WriteFileBytes(dataFolder_ / "Image7.gif", "GIF89a"); }

    test::TempDir dataFolder_;
    test::FakeClock clock_;
    PageContext context_;
    Channel channel_;
    NewsItem item_;
};

TEST_F(StoryPageTest, FullPageWithTitleLocalDateAndCharset) {
    channel_.SetEncoding(WString(u"windows-1251"));
    const std::u16string expected =
        std::u16string(u"<html><meta http-equiv=\"content-type\" content=\"text/html; "
                       u"charset=windows-1251\">") +
        std::u16string(kPageStart) + std::u16string(kTitleBanner) +
        u"<tr><td><b>Storm reaches coast</b><br></td></tr><tr><td height =\"4\"></td></tr>"
        u"<tr><td><p>Winds of <i>120</i> km/h.</p>" +
        std::u16string(kDatedTail);
    EXPECT_EQ(Page(), expected);
    // The date is shown in local time.
    clock_.setZone(TimeZoneInfo{-120, -60, true});
    EXPECT_NE(Page().find(u"Published: 10/23/07 1:16 AM</font>"), std::u16string::npos);
}

TEST_F(StoryPageTest, WithoutTitleDateOrCharsetThoseRowsAreLeftOut) {
    item_.SetTitle(WString());
    item_.SetDate(FeedDate());
    const std::u16string expected = u"<html>" + std::u16string(kPageStart) +
                                    std::u16string(kTitleBanner) +
                                    u"<tr><td><p>Winds of <i>120</i> km/h.</p></td></tr>"
                                    u"<tr><td height =\"8\"></td></tr></table></body></html>";
    EXPECT_EQ(Page(), expected);
}

TEST_F(StoryPageTest, StoryWithoutBodyHasNoPageAndALogoOnDiskReplacesTheTitleBanner) {
    item_.SetDescription(WString());
    EXPECT_FALSE(BuildStoryPage(channel_, item_, context_).has_value());

    item_.SetDescription(WString(u""));
    EXPECT_NE(Page().find(u"<tr><td></td></tr>"), std::u16string::npos);
    EXPECT_NE(Page().find(kTitleBanner), std::u16string::npos) << "named but not downloaded";

    PutLogoOnDisk();
    const std::u16string page = Page();
    const std::u16string pictureRow = u"<tr><td><img src=\"file://" + context_.dataFolder +
                                      u"/Image7.gif\"><br></td></tr>"
                                      u"<tr><td height =\"8\"></td></tr><tr><td><b>Storm";
    EXPECT_NE(page.find(u"cellSpacing=\"0\">" + pictureRow), std::u16string::npos)
        << Utf16ToUtf8(page);
    EXPECT_EQ(page.find(u"Daily Planet"), std::u16string::npos);

    channel_.image().SetLocalFile(WString(u""));
    EXPECT_NE(Page().find(kTitleBanner), std::u16string::npos) << "no file name, no picture";
}

TEST_F(StoryPageTest, InsertedTextsKeepTheirMarkup) {
    channel_.SetTitle(WString(u"A & B <i>news</i>"));
    item_.SetTitle(WString(u"1 < 2 & \"quoted\""));
    const std::u16string page = Page();
    EXPECT_NE(page.find(u"<font color=\"#6898C8\">A & B <i>news</i></font>"), std::u16string::npos);
    EXPECT_NE(page.find(u"<b>1 < 2 & \"quoted\"</b>"), std::u16string::npos);
}

TEST_F(StoryPageTest, LongTitleCutsEverythingBeforeTheBodyAt1039CharactersButTheBodyIsWhole) {
    item_.SetTitle(WString(std::u16string(3000, u'T')));
    const std::u16string page = Page();
    const std::u16string body = u"<p>Winds of <i>120</i> km/h.</p>";
    ASSERT_GT(page.size(), 1039u);
    EXPECT_EQ(page.substr(1039 - 3, 3 + body.size()), u"TTT" + body);
    EXPECT_TRUE(page.ends_with(kDatedTail));
    EXPECT_EQ(page.size(), 1039 + body.size() + kDatedTail.size());

    std::u16string huge(100000, u'x');
    huge.front() = u'<';
    huge.back() = u'>';
    item_.SetDescription(WString(huge));
    const std::u16string hugePage = Page();
    const std::size_t at = hugePage.find(huge);
    ASSERT_NE(at, std::u16string::npos);
    EXPECT_EQ(hugePage.substr(at + huge.size()), kDatedTail);
}

} // namespace
} // namespace qf
