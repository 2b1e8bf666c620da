#include "render/ChannelPage.h"

#include "model/Channel.h"
#include "platform/FsPath.h"
#include "platform/Text.h"
#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

constexpr std::u16string_view kBannerStart =
    u"<html><body bgColor=\"#ffffff\" leftMargin=\"2\" topMargin=\"2\" rightMargin=\"2\" "
    u"bottomMargin=\"2\"><table border=\"0\" cellPadding=\"0\" cellSpacing=\"0\" "
    u"width=\"100%\"><tr><td height=\"36\">";
constexpr std::u16string_view kTitle = u"<b><font color=\"#6898C8\">Daily Planet</font></b>";
constexpr std::u16string_view kBannerEnd = u"</td></tr></table></body></html>";

// A channel whose 88 x 31 logo is named; the tests decide whether the file is on disk.
class ChannelPageTest : public ::testing::Test {
protected:
    ChannelPageTest() {
        context_.dataFolder = FromFsPath(dataFolder_.path());
        channel_.SetTitle(WString(u"Daily Planet"));
        channel_.image().SetLocalFile(WString(u"Image3.png"));
        SetLogoSize(88, 31);
    }

    void PutLogoOnDisk() { test::WriteFileBytes(dataFolder_ / "Image3.png", "\x89PNG"); }
    void SetLogoSize(int32_t width, int32_t height) {
        channel_.image().SetWidth(width);
        channel_.image().SetHeight(height);
    }
    std::u16string Picture(std::u16string_view attributes) const {
        return u"<img src=\"file://" + context_.dataFolder + u"/Image3.png\"" +
               std::u16string(attributes) + u" >";
    }
    std::u16string PocketPcPage(int width = 240, int height = 40) const {
        return BuildChannelPage(channel_, width, height, false, context_);
    }

    test::TempDir dataFolder_;
    PageContext context_;
    Channel channel_;
};

// Both families show the title alone while the logo is not on disk.
TEST_F(ChannelPageTest, PocketPcShowsTitleAndLogoSideBySideAndSmartphoneTheLogoAloneOnceOnDisk) {
    const std::u16string titleOnly =
        std::u16string(kBannerStart) + std::u16string(kTitle) + std::u16string(kBannerEnd);
    EXPECT_EQ(PocketPcPage(), titleOnly);
    EXPECT_EQ(BuildChannelPage(channel_, 240, 40, true, context_), titleOnly);
    channel_.image().SetLocalFile(WString());
    EXPECT_EQ(PocketPcPage(), titleOnly);

    PutLogoOnDisk();
    EXPECT_EQ(PocketPcPage(), std::u16string(kBannerStart) + std::u16string(kTitle) + u"</td><td>" +
                                  Picture(u" width=88 height=31 align=right") +
                                  std::u16string(kBannerEnd));
    EXPECT_EQ(BuildChannelPage(channel_, 240, 40, true, context_),
              std::u16string(kBannerStart) + Picture(u" width=88 height=31 align=left") +
                  std::u16string(kBannerEnd));
}

TEST_F(ChannelPageTest, CharsetNameAddsTheMetaLine) {
    channel_.SetEncoding(WString(u"utf-8"));
    EXPECT_TRUE(PocketPcPage().starts_with(
        u"<html><meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\"><body "));
}

// A logo too wide is narrowed and may stay taller than the banner; one too tall is shortened;
// an unsized one gets the banner's height; an empty banner scales nothing.
TEST_F(ChannelPageTest, LogoIsScaledWithASingleCorrection) {
    PutLogoOnDisk();
    const struct {
        int32_t width, height, bannerWidth, bannerHeight;
        std::u16string_view attributes;
    } cases[] = {
        {300, 60, 240, 40, u" width=236 height=47 align=right"},
        {88, 60, 240, 40, u" width=52 height=36 align=right"},
        {240, 40, 240, 40, u" width=240 height=40 align=right"},
        {0, 0, 240, 40, u" height=36 align=right"},
        {120, 0, 240, 40, u" width=120 height=36 align=right"},
        {300, 60, 0, 0, u" width=300 height=60 align=right"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(Utf16ToUtf8(c.attributes));
        SetLogoSize(c.width, c.height);
        EXPECT_NE(PocketPcPage(c.bannerWidth, c.bannerHeight).find(Picture(c.attributes)),
                  std::u16string::npos);
    }
    EXPECT_NE(PocketPcPage(0, 0).find(u"<td height=\"-4\">"), std::u16string::npos);
}

TEST_F(ChannelPageTest, LongTitleCutsThePageAt519Characters) {
    channel_.SetTitle(WString(std::u16string(600, u'T')));
    const std::u16string page = PocketPcPage();
    EXPECT_EQ(page.size(), 519u);
    EXPECT_TRUE(page.ends_with(u"TTTT"));
}

TEST(ChannelPageGeometry, BannerTakesFifteenPercentOfTheClientHeight) {
    EXPECT_EQ(BannerHeight(268), 40);
    EXPECT_EQ(BannerHeight(20), 3);
}

} // namespace
} // namespace qf
