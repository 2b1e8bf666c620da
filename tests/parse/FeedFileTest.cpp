#include "parse/FeedFile.h"

#include "model/Channel.h"
#include "model/ChannelStore.h"
#include "parse/FeedReader.h"
#include "parse/ReadState.h"
#include "parse/XmlDocument.h"
#include "platform/FsPath.h"
#include "store/OpmlImport.h"
#include "support/TestEnv.h"

#include <cstdlib>
#include <filesystem>
#include <set>

#include <gtest/gtest.h>

namespace qf {
namespace {

namespace fs = std::filesystem;

// Feeds broken in one way each: every one ends in a plain answer. All but two fail: wrong roots,
// nesting beyond the parser's limit, NUL bytes, bytes that are not in the declared encoding, an
// unknown encoding, UTF-16 (the quick test reads up to the first NUL byte) and a cut-off file.
TEST(FeedFile, OddFeedsEndInAPlainAnswer) {
    const fs::path folder = fs::path(QF_TEST_DATA_DIR) / "feeds";
    const std::set<std::string> parsing = {"deep-nesting-within-parser-limit.xml",
                                           "utf8-bytes-declared-latin1.xml"};
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        Channel channel;
        EXPECT_EQ(LoadFeedFile(FromFsPath(entry.path()), channel, true), parsing.contains(name))
            << name;
        EXPECT_EQ(channel.items().size(), parsing.contains(name) ? 1u : 0u) << name;
    }
}

// Third-party feeds of every kind and defect: each one is read as a feed (its read states
// stamped back into it) and as OPML and answers, whatever it holds. The folder can be moved with
// QF_CORPUS_DIR.
TEST(FeedFile, ThirdPartyCorpusReadsWithoutHarm) {
    const char* moved = std::getenv("QF_CORPUS_DIR");
    const fs::path corpus = moved != nullptr ? fs::path(moved) : fs::path(QF_CORPUS_DIR);
    if (!fs::is_directory(corpus)) {
        GTEST_SKIP() << "no corpus at " << corpus;
    }
    std::size_t files = 0;
    std::size_t feeds = 0;
    for (const auto& entry : fs::recursive_directory_iterator(corpus)) {
        const std::string name = entry.path().filename().string();
        if (!entry.is_regular_file() || name == "README.md" || name == "MANIFEST.tsv" ||
            name == "LICENSE") {
            continue;
        }
        ++files;
        const std::u16string path = FromFsPath(entry.path());
        XmlDocument document;
        Channel channel;
        if (document.LoadFile(path) && ParseFeed(document, channel, true)) {
            ++feeds;
            for (const auto& item : channel.items()) {
                item->SetRead(1);
            }
            EXPECT_TRUE(WriteReadStates(document, channel)) << entry.path();
        }
        ChannelStore imported;
        ImportOpml(OpmlSource(path), imported);
    }
    EXPECT_GT(files, 4000u);
    EXPECT_GT(feeds, files / 2);
}

} // namespace
} // namespace qf
