#include "net/BrowserLink.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

TEST(BrowserLink, LocalPrefixIsRemovedOnlyAtTheVeryStart) {
    EXPECT_EQ(LinkForBrowser(WString(u"qf_http://example.org/a")), u"http://example.org/a");
    EXPECT_EQ(LinkForBrowser(WString(u"http://example.org/qf_a")), u"http://example.org/qf_a");
    EXPECT_EQ(LinkForBrowser(WString(u"QF_x")), u"QF_x");
    EXPECT_EQ(LinkForBrowser(WString(u"qf_qf_x")), u"qf_x");
    EXPECT_EQ(LinkForBrowser(WString(u"qf_")), u"");
}

TEST(BrowserLink, StoryWithoutLinkHasNothingToOpen) {
    EXPECT_FALSE(LinkForBrowser(WString()).has_value());
    EXPECT_EQ(LinkForBrowser(WString(u"")), u"");
}

} // namespace
} // namespace qf
