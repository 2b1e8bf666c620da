#include "model/DataFolder.h"

#include "platform/Files.h"
#include "platform/FsPath.h"
#include "store/StoreBackups.h"
#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

namespace fs = std::filesystem;

class DataFolderTest : public ::testing::Test {
protected:
    fs::path mainData() const { return dir / "home/QFChannelsData"; }
    fs::path cardData(const std::string& card) const {
        return dir / "cards" / card / "Quillfeed/QFChannelsData";
    }
    void AddCard(const std::string& name) const { fs::create_directories(dir / "cards" / name); }

    test::TempDir dir;
    test::EnvVar home{"QUILLFEED_HOME", (dir / "home").string()};
    test::EnvVar cards{"QUILLFEED_CARDS", (dir / "cards").string()};
};

TEST_F(DataFolderTest, VolumesLeadToTheirDataFolders) {
    AddCard("SD Card");
    EXPECT_EQ(DataFolderOfVolume(u"\\"), FromFsPath(mainData()));
    EXPECT_EQ(DataFolderOfVolume(u"\\SD Card"), FromFsPath(cardData("SD Card")));
    EXPECT_EQ(DataFolderOfVolume(u"\\Missing Card"), std::nullopt);
    EXPECT_EQ(DataFolderOfVolume(u""), std::nullopt);
    EXPECT_EQ(DataFolderOfVolume(u"SD Card"), std::nullopt);

    EXPECT_EQ(DataFilePath(u"\\SD Card", WString(u"Channel7.xml")),
              FromFsPath(cardData("SD Card") / "Channel7.xml"));
    EXPECT_EQ(DataFilePath(u"\\", WString()), std::nullopt);
    EXPECT_EQ(ChannelStorePath(u"\\"), FromFsPath(mainData() / "QFChannels.opml"));
    EXPECT_FALSE(fs::exists(dir / "home"));
}

TEST_F(DataFolderTest, MainMemoryFollowsXdgDataHomeWithoutAnOverride) {
    test::EnvVar noHome("QUILLFEED_HOME", std::nullopt);
    {
        test::EnvVar dataHome("XDG_DATA_HOME", (dir / "xdg").string());
        EXPECT_EQ(DataFolderOfVolume(u"\\"), FromFsPath(dir / "xdg/Quillfeed/QFChannelsData"));
    }
    test::EnvVar noDataHome("XDG_DATA_HOME", std::nullopt);
    test::EnvVar userHome("HOME", (dir / "user").string());
    EXPECT_EQ(DataFolderOfVolume(u"\\"),
              FromFsPath(dir / "user/.local/share/Quillfeed/QFChannelsData"));
}

TEST_F(DataFolderTest, TwoCardsCountTwoButOnlyIndexZeroHasAName) {
    EXPECT_EQ(StorageCardCount(), 0);
    EXPECT_EQ(StorageCardName(0), std::nullopt);

    AddCard("Storage Card");
    AddCard("Card 2");
    test::WriteFileBytes(dir / "cards/not-a-card.txt", "x");
    EXPECT_EQ(StorageCardCount(), 2);
    EXPECT_EQ(StorageCardName(0), u"Card 2");
    EXPECT_EQ(StorageCardName(1), std::nullopt);
    EXPECT_EQ(StorageCardName(-1), std::nullopt);
}

TEST_F(DataFolderTest, MovingTakesSubfoldersAlongReplacesSameNamesAndNeverFollowsLinks) {
    AddCard("SD");
    fs::create_directories(mainData() / "offline/images");
    test::WriteFileBytes(mainData() / "QFChannels.opml", "<opml/>");
    test::WriteFileBytes(mainData() / "offline/story.htm", "story");
    test::WriteFileBytes(mainData() / "offline/images/logo.gif", "GIF");
    fs::create_directories(mainData() / "Backups");
    test::WriteFileBytes(mainData() / "Backups/QFChannels-2024-03-05.opml", "<opml/>");
    fs::create_directories(dir / "outside");
    test::WriteFileBytes(dir / "outside/precious.txt", "mine");
    fs::create_directory_symlink(dir / "outside", mainData() / "linked-folder");
    fs::create_symlink(dir / "outside/precious.txt", mainData() / "linked-file");
    fs::create_directories(cardData("SD"));
    test::WriteFileBytes(cardData("SD") / "QFChannels.opml", "old");
    test::WriteFileBytes(cardData("SD") / "Channel2.xml", "other");

    ASSERT_TRUE(MoveData(u"\\", u"\\SD"));

    EXPECT_EQ(test::ReadFileBytes(cardData("SD") / "QFChannels.opml"), "<opml/>");
    EXPECT_EQ(test::ReadFileBytes(cardData("SD") / "Channel2.xml"), "other");
    EXPECT_EQ(test::ReadFileBytes(cardData("SD") / "offline/story.htm"), "story");
    EXPECT_EQ(test::ReadFileBytes(cardData("SD") / "offline/images/logo.gif"), "GIF");
    EXPECT_EQ(ListStoreBackups(*ChannelStorePath(u"\\SD")),
              std::vector{FromFsPath(cardData("SD") / "Backups/QFChannels-2024-03-05.opml")});
    EXPECT_EQ(fs::read_symlink(cardData("SD") / "linked-folder"), dir / "outside");
    EXPECT_EQ(fs::read_symlink(cardData("SD") / "linked-file"), dir / "outside/precious.txt");
    EXPECT_FALSE(fs::exists(mainData()));
    EXPECT_EQ(test::ReadFileBytes(dir / "outside/precious.txt"), "mine");
    EXPECT_EQ(std::distance(fs::directory_iterator(dir / "outside"), fs::directory_iterator()), 1);
}

TEST_F(DataFolderTest, MovingBetweenVolumesThatShareAFolderLosesNothing) {
    AddCard("SD");
    test::EnvVar sameHome("QUILLFEED_HOME", (dir / "cards/SD/Quillfeed").string());
    fs::create_directories(cardData("SD"));
    test::WriteFileBytes(cardData("SD") / "QFChannels.opml", "<opml/>");

    EXPECT_TRUE(MoveData(u"\\", u"\\SD"));
    EXPECT_EQ(test::ReadFileBytes(cardData("SD") / "QFChannels.opml"), "<opml/>");
}

TEST_F(DataFolderTest, DataCannotMoveIntoAFolderInsideItselfNorFromOrToAVolumeThatIsGone) {
    EXPECT_FALSE(MoveData(u"\\Gone", u"\\"));
    EXPECT_FALSE(MoveData(u"\\", u"\\Gone"));
    EXPECT_FALSE(fs::exists(dir / "home"));
    test::EnvVar nestedCards("QUILLFEED_CARDS", (mainData() / "cards").string());
    fs::create_directories(mainData() / "cards/SD");
    test::WriteFileBytes(mainData() / "QFChannels.opml", "<opml/>");

    EXPECT_FALSE(MoveData(u"\\", u"\\SD"));
    EXPECT_EQ(test::ReadFileBytes(mainData() / "QFChannels.opml"), "<opml/>");
    EXPECT_FALSE(fs::exists(mainData() / "cards/SD/Quillfeed"));
}

} // namespace
} // namespace qf
