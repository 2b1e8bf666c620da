#include "render/WelcomePage.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

constexpr std::u16string_view kGreeting =
    u"<html><body bgColor=\"#ffffff\" leftMargin=\"2\" topMargin=\"2\" rightMargin=\"2\" "
    u"bottomMargin=\"2\"><center><img src=\"qf_logo.bmp\"><br><br>Welcome to "
    u"<b>Quillfeed</b>!<br><br>This RSS newsreader puts the latest headlines, weather, sports, "
    u"business, and entertainment news right in your hands.<br>You just need to select what news "
    u"feeds (Channels) you are interested in.</center>";
constexpr std::u16string_view kContinueHint =
    u"<center><br><br>To get started, please tap <b>Continue</b>.</center>";
constexpr std::u16string_view kEnd = u"</body></html>";

TEST(WelcomePage, PocketPcPageAsksToTapContinueAndOtherDevicesEndAfterTheGreeting) {
    EXPECT_EQ(BuildWelcomePage(false, 4),
              std::u16string(kGreeting) + std::u16string(kContinueHint) + std::u16string(kEnd));
    const std::u16string greetingOnly = std::u16string(kGreeting) + std::u16string(kEnd);
    EXPECT_EQ(BuildWelcomePage(true, 12), greetingOnly);
    EXPECT_EQ(BuildWelcomePage(true, 4), greetingOnly);
    EXPECT_EQ(BuildWelcomePage(false, 2), greetingOnly);

    EXPECT_EQ(WelcomeLogo(200), 1053);
    EXPECT_EQ(WelcomeLogo(219), 1053);
    EXPECT_EQ(WelcomeLogo(220), 1041);
    EXPECT_EQ(WelcomeLogo(240), 1041);
}

} // namespace
} // namespace qf
