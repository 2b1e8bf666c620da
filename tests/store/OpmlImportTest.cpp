#include "store/OpmlImport.h"

#include "model/ChannelStore.h"
#include "platform/FsPath.h"
#include "support/TestEnv.h"

#include <algorithm>
#include <regex>
#include <sstream>

#include <gtest/gtest.h>

namespace qf {
namespace {

TEST(OpmlImport, DirectoryHoldsOnlyPlainCategoriesAndChannels) {
    const std::string_view text = ChannelDirectoryText();
    EXPECT_TRUE(std::all_of(text.begin(), text.end(),
                            [](char c) { return c > 0 && static_cast<unsigned char>(c) < 0x80; }));
    EXPECT_TRUE(text.starts_with("<?xml version=\"1.0\"?>\n"));
    EXPECT_NE(text.find("<head/>"), std::string_view::npos);
    // Every outline is a category with only a name, or a channel with only a name and an address.
    std::istringstream lines{std::string(text)};
    const std::regex category(R"(<outline text="[^"]+">)");
    const std::regex channel(R"(<outline text="[^"]+" xmlUrl="https?://[^"]+"/>)");
    for (std::string line; std::getline(lines, line);) {
        if (line.find("<outline") != std::string::npos) {
            EXPECT_TRUE(std::regex_match(line, category) || std::regex_match(line, channel))
                << line;
        }
    }
}

TEST(OpmlImport, FileFlattensSubGroupsAndPutsLooseChannelsInDefaultAndOtherFilesFail) {
    const test::TempDir dir;
    test::WriteFileBytes(dir / "list.opml", R"(<?xml version="1.0" encoding="ISO-8859-1"?>
        <opml version="2.0"><head><title>Mine</title></head><body>
          <outline text="Café" xmlUrl="http://loose/"/>
          <outline text="Tech"><outline text="Linux">
            <outline type="rss" text="LWN" title="Ignored" xmlUrl="https://lwn.net/headlines/rss"/>
          </outline><outline text="Twice" xmlUrl="http://twice/"/>
          <outline text="Twice" xmlUrl="http://twice/"/></outline>
        </body></opml>)");
    ChannelStore store;
    ASSERT_TRUE(ImportOpml(FromFsPath(dir / "list.opml"), store));
    ASSERT_EQ(store.categories().size(), 2u);
    const Category& loose = *store.categories()[0];
    EXPECT_EQ(loose.name(), u"Default");
    // The file is read in the default character set whatever its declaration says.
    EXPECT_EQ(loose.channels()[0]->title(), u"Café");
    const Category& tech = *store.categories()[1];
    ASSERT_EQ(tech.channels().size(), 3u);
    EXPECT_EQ(tech.channels()[0]->title(), u"LWN");
    EXPECT_EQ(tech.channels()[2]->xmlUrl(), u"http://twice/");

    store.categories().clear();
    EXPECT_FALSE(ImportOpml(FromFsPath(dir / "missing.opml"), store));
    test::WriteFileBytes(dir / "empty.opml", "");
    EXPECT_FALSE(ImportOpml(FromFsPath(dir / "empty.opml"), store));
    test::WriteFileBytes(dir / "feed.xml", "<?xml version=\"1.0\"?><rss><channel/></rss>");
    EXPECT_FALSE(ImportOpml(FromFsPath(dir / "feed.xml"), store));
    EXPECT_TRUE(store.categories().empty());
}

} // namespace
} // namespace qf
