#include "model/Channel.h"
#include "model/ChannelStore.h"
#include "parse/FeedReader.h"
#include "parse/OpmlImport.h"
#include "parse/ReadState.h"
#include "parse/XmlDocument.h"
#include "platform/AtomicFile.h"
#include "platform/Text.h"

#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

namespace qf {
namespace {

namespace fs = std::filesystem;

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
TEST(Corpus, ThirdPartyFilesReadWithoutHarm) {
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
