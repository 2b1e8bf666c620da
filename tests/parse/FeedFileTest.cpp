#include "parse/FeedFile.h"

#include "model/Channel.h"
#include "platform/AtomicFile.h"
#include "support/TestEnv.h"

#include <filesystem>

#include <gtest/gtest.h>

namespace qf {
namespace {

namespace fs = std::filesystem;

struct OddFeed {
    const char* name;
    bool parses;
    std::size_t items;
};

// Feeds broken in one way each: every one ends in a plain answer, and what does parse is read
// whole.
TEST(FeedFile, OddFeedsEndInAPlainAnswer) {
    const fs::path folder = fs::path(QF_TEST_DATA_DIR) / "feeds";
    const OddFeed feeds[] = {
        {"wrong-root-html.xml", false, 0},
        {"wrong-root-prefixed-atom.xml", false, 0},
        {"wrong-root-opml.xml", false, 0},
        {"deep-nesting-beyond-parser-limit.xml", false, 0},
        {"deep-nesting-within-parser-limit.xml", true, 1},
        {"huge-single-description.xml", true, 1},
        {"nul-byte-inside-item.xml", false, 0},
        {"nul-byte-before-declaration.xml", false, 0},
        {"latin1-bytes-declared-utf8.xml", false, 0},
        {"utf8-bytes-declared-latin1.xml", true, 1},
        {"utf16le-with-bom.xml", false, 0}, // the quick test reads up to the first NUL byte
        {"truncated-inside-item.xml", false, 0},
        {"billion-laughs.xml", false, 0},
        {"external-entity-to-local-file.xml", true, 1},
    };
    std::size_t checked = 0;
    for (const OddFeed& feed : feeds) {
        Channel channel;
        EXPECT_EQ(LoadFeedFile(FromFsPath(folder / feed.name), channel, true), feed.parses)
            << feed.name;
        EXPECT_EQ(channel.items().size(), feed.items) << feed.name;
        ++checked;
    }
    EXPECT_EQ(checked, static_cast<std::size_t>(std::distance(fs::directory_iterator(folder),
                                                              fs::directory_iterator())));

    Channel huge;
    ASSERT_TRUE(LoadFeedFile(FromFsPath(folder / "huge-single-description.xml"), huge, true));
    EXPECT_EQ(huge.items()[0]->description().size(), 22u * 12000u);
    EXPECT_EQ(huge.items()[0]->link().size(), 19u + 4000u);

    Channel external;
    ASSERT_TRUE(
        LoadFeedFile(FromFsPath(folder / "external-entity-to-local-file.xml"), external, true));
    EXPECT_EQ(external.items()[0]->title(), u"");
}

} // namespace
} // namespace qf
