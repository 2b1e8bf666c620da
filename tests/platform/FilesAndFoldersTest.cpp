
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/FsPath.h"
#include "support/TestEnv.h"

#include <sys/stat.h>

#include <gtest/gtest.h>

namespace qf {
namespace {

namespace fs = std::filesystem;

class FileUtilTest : public ::testing::Test {
protected:
    std::u16string at(const std::string& relative) const { return FromFsPath(dir / relative); }

    test::TempDir dir;
};

TEST_F(FileUtilTest, CreatingAPathCreatesEachMissingParentInTurn) {
    fs::create_directory(dir / "A");
    EXPECT_TRUE(CreateDirectoryPath(at("A/B/C")));
    EXPECT_TRUE(fs::is_directory(dir / "A/B/C"));

    EXPECT_TRUE(CreateDirectoryPath(at("A/B")));
    EXPECT_FALSE(CreateDirectoryPath(u""));

    EXPECT_TRUE(CreateParentDirectory(at("D/E/file.xml")));
    EXPECT_TRUE(fs::is_directory(dir / "D/E"));
    EXPECT_FALSE(fs::exists(dir / "D/E/file.xml"));
}

TEST_F(FileUtilTest, ReadingGivesNoTextForEmptyMissingOrSpecialFiles) {
    test::WriteFileBytes(dir / "empty", "");
    test::WriteFileBytes(dir / "feed", "<rss>caf\xc3\xa9</rss>");
    ASSERT_EQ(::mkfifo((dir / "pipe").c_str(), 0600), 0);

    EXPECT_EQ(ReadFileAsText(at("empty")), std::nullopt);
    EXPECT_EQ(ReadFileAsText(at("missing")), std::nullopt);
    EXPECT_EQ(ReadFileAsText(at("pipe")), std::nullopt);
    EXPECT_EQ(ReadFileAsText(FromFsPath(dir.path())), std::nullopt);
    EXPECT_EQ(ReadFileAsText(at("feed")), u"<rss>caf\u00e9</rss>");
}

TEST_F(FileUtilTest, CopyReplacesDeleteRemovesOnlyFilesAndTreeRemovalKeepsFoldersWithFiles) {
    test::WriteFileBytes(dir / "source", "new");
    test::WriteFileBytes(dir / "target", "old and longer");
    EXPECT_TRUE(CopyFile(at("source"), at("target")));
    EXPECT_EQ(test::ReadFileBytes(dir / "target"), "new");

    EXPECT_FALSE(CopyFile(at("missing"), at("target")));
    EXPECT_EQ(test::ReadFileBytes(dir / "target"), "new");

    EXPECT_TRUE(DeleteFile(at("source")));
    EXPECT_FALSE(DeleteFile(at("source")));
    EXPECT_FALSE(DeleteFile(FromFsPath(dir.path())));
    EXPECT_TRUE(fs::exists(dir.path()));

    fs::create_directories(dir / "tree/a/b/c");
    fs::create_directories(dir / "tree/d");
    fs::create_directories(dir / "tree/kept/inner");
    test::WriteFileBytes(dir / "tree/kept/inner/left-behind.xml", "x");

    EXPECT_FALSE(RemoveEmptyDirectory(at("tree/kept")));
    EXPECT_TRUE(RemoveDirectoryTree(at("tree")));

    EXPECT_FALSE(fs::exists(dir / "tree/a"));
    EXPECT_FALSE(fs::exists(dir / "tree/d"));
    EXPECT_TRUE(fs::exists(dir / "tree/kept/inner/left-behind.xml"));
    EXPECT_TRUE(RemoveDirectoryTree(at("missing")));
}

} // namespace
} // namespace qf
