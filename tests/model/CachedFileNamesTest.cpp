#include "model/CachedFileNames.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

TEST(CachedFileNames, ImageExtensionIgnoresQueryAndRejectsPathsAndLongTexts) {
    EXPECT_EQ(ImageExtension(u"a/logo.gif?x=1.2"), u"gif");
    EXPECT_EQ(ImageExtension(u"a/logo"), u"");
    EXPECT_EQ(ImageExtension(u"a/x.jpeg5"), u"");
    EXPECT_EQ(ImageExtension(u"a.b/logo"), u"");
    EXPECT_EQ(ImageExtension(u"a/x.jpeg"), u"jpeg");
    EXPECT_EQ(ImageExtension(u"a/logo."), u"");
    EXPECT_EQ(ImageExtension(u"a/logo.png?v=2?w=3"), u"");
}

TEST(CachedFileNames, FilesAreNamedAfterChannelIdAndImageExtension) {
    EXPECT_EQ(FeedFileName(7), u"Channel7.xml");
    EXPECT_EQ(ImageFileName(3, u"http://x/logo.gif?x=1.2"), u"Image3.gif");
    EXPECT_EQ(ImageFileName(3, u"http://x.org/logo"), u"Image3");
}

} // namespace
} // namespace qf
