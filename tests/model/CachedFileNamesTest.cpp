#include "model/CachedFileNames.h"

#include "platform/Text.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

TEST(CachedFileNames, ImageExtensionRejectsPathsAndOnlyNamesGivenToCachedFilesHaveAnId) {
    EXPECT_EQ(ImageExtension(u"a/logo.gif?x=1.2"), u"gif");
    EXPECT_EQ(ImageExtension(u"a/logo"), u"");
    EXPECT_EQ(ImageExtension(u"a/x.jpeg5"), u"");
    EXPECT_EQ(ImageExtension(u"a.b/logo"), u"");
    EXPECT_EQ(ImageExtension(u"a/x.jpeg"), u"jpeg");
    EXPECT_EQ(ImageExtension(u"a/logo."), u"");
    EXPECT_EQ(ImageExtension(u"a/logo.png?v=2?w=3"), u"");

    EXPECT_EQ(ChannelIdOfCachedFile(u"Channel12.xml"), 12);
    EXPECT_EQ(ChannelIdOfCachedFile(u"Image3.gif"), 3);
    EXPECT_EQ(ChannelIdOfCachedFile(u"Image3"), 3);
    for (const std::u16string_view other : {u"Channel07.xml", u"Channel7.xml.part-a1", u"Image",
                                            u"Images", u"Image3.gif.part-x", u"QFChannels.opml"}) {
        EXPECT_EQ(ChannelIdOfCachedFile(other), std::nullopt) << Utf16ToUtf8(other);
    }
}

} // namespace
} // namespace qf
