#include "parse/FeedFile.h"

#include "model/Channel.h"
#include "model/ChannelStore.h"
#include "parse/FeedReader.h"
#include "parse/ReadState.h"
#include "parse/XmlDocument.h"
#include "platform/FsPath.h"
#include "platform/Text.h"
#include "store/OpmlImport.h"
#include "support/TestEnv.h"

#include <cstdlib>
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

bool IsCorpusNote(const fs::path& path) {
    const std::string name = path.filename().string();
    return name == "README.md" || name == "MANIFEST.tsv" || name == "LICENSE";
}

// Reads the file as a feed, stamps read states back into it, and imports it as OPML.
bool ReadEveryWay(const std::u16string& path) {
    XmlDocument document;
    Channel channel;
    const bool feed = document.LoadFile(path) && ParseFeed(document, channel, true);
    if (feed) {
        for (const auto& item : channel.items()) {
            item->SetRead(1);
        }
        EXPECT_TRUE(WriteReadStates(document, channel)) << Utf16ToUtf8(path);
    }
    ChannelStore imported;
    ImportOpml(OpmlSource(path), imported);
    return feed;
}

// Third-party feeds of every kind and defect: each one is read as a feed and as OPML and
// answers, whatever it holds. The folder can be moved with QF_CORPUS_DIR.
TEST(FeedFile, ThirdPartyCorpusReadsWithoutHarm) {
    const char* moved = std::getenv("QF_CORPUS_DIR");
    const fs::path corpus = moved != nullptr ? fs::path(moved) : fs::path(QF_CORPUS_DIR);
    if (!fs::is_directory(corpus)) {
        GTEST_SKIP() << "no corpus at " << corpus;
    }
    std::size_t files = 0;
    std::size_t feeds = 0;
    for (const auto& entry : fs::recursive_directory_iterator(corpus)) {
        if (entry.is_regular_file() && !IsCorpusNote(entry.path())) {
            ++files;
            feeds += ReadEveryWay(FromFsPath(entry.path())) ? 1 : 0;
        }
    }
    EXPECT_GT(files, 4000u);
    EXPECT_GT(feeds, files / 2);
}

} // namespace
} // namespace qf
