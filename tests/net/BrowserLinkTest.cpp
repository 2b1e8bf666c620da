#include "net/BrowserLink.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

TEST(BrowserLink, LocalPrefixGoesOnlyAtTheStartAndOnlyWebAndMailAddressesLeave) {
    EXPECT_EQ(LinkForBrowser(WString(u"qf_http://example.org/a")), u"http://example.org/a");
    EXPECT_EQ(LinkForBrowser(WString(u"http://example.org/qf_a")), u"http://example.org/qf_a");
    EXPECT_EQ(LinkForBrowser(WString(u"qf_qf_https://example.org/")), std::nullopt);

    EXPECT_EQ(LinkForBrowser(WString(u"HTTPS://example.org/")), u"HTTPS://example.org/");
    EXPECT_EQ(LinkForBrowser(WString(u"mailto:editor@example.org")), u"mailto:editor@example.org");
    for (const char16_t* hostile :
         {u"file:///etc/passwd", u"qf_file:///home", u"smb://host/share", u"javascript:alert(1)",
          u"x-scheme-handler:run", u" http://example.org/", u"//example.org/", u"relative/page",
          u"QF_x", u"qf_", u""}) {
        EXPECT_EQ(LinkForBrowser(WString(hostile)), std::nullopt);
    }
    EXPECT_EQ(LinkForBrowser(WString()), std::nullopt);
}

} // namespace
} // namespace qf
