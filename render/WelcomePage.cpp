#include "render/WelcomePage.h"

#include "platform/StringTable.h"
#include "render/PageMarkup.h"

namespace qf {

namespace {

using namespace markup;

constexpr int32_t kContinueHintPlatformCode = 4;
constexpr int kSmallScreenWidth = 220;
constexpr std::u16string_view kNamePlaceholder = u"%s";

// The greeting text with the product name in place of its one placeholder.
std::u16string Greeting() {
    std::u16string text(LoadString(kStrWelcomeGreeting));
    const std::size_t at = text.find(kNamePlaceholder);
    if (at != std::u16string::npos) {
        text.replace(at, kNamePlaceholder.size(), LoadString(kStrProductName));
    }
    return text;
}

} // namespace

std::u16string BuildWelcomePage(bool smartphone, int32_t platformCode) {
    std::u16string page(kHtmlOpen);
    page += kBodyOpen;
    page += Greeting();
    if (!smartphone && platformCode == kContinueHintPlatformCode) {
        page += LoadString(kStrWelcomeContinueHint);
    }
    page += u"</body></html>";
    return page;
}

int WelcomeLogo(int screenWidth) {
    return screenWidth < kSmallScreenWidth ? kWelcomeLogoSmall : kWelcomeLogoLarge;
}

} // namespace qf
