#include "store/StoreBackups.h"

#include "model/ChannelStore.h"
#include "platform/Files.h"
#include "platform/FsPath.h"
#include "store/ChannelStoreFile.h"
#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

namespace fs = std::filesystem;

SystemTime At(uint16_t day, uint16_t hour, uint16_t minute = 0, uint16_t second = 0) {
    SystemTime time;
    time.year = 2024;
    time.month = 3;
    time.day = day;
    time.hour = hour;
    time.minute = minute;
    time.second = second;
    return time;
}

// A store file in a temporary data folder, saved with the channels whose ids are given; the
// clock stands at 5 March 2024 in a zone two hours east of UTC.
class StoreBackupsTest : public ::testing::Test {
protected:
    std::u16string StorePath() const { return FromFsPath(dir / "QFChannels.opml"); }
    fs::path Backup(const std::string& stamp) const {
        return dir / "Backups" / ("QFChannels-" + stamp + ".opml");
    }
    std::vector<std::u16string> Backups(std::initializer_list<std::string> stamps) const {
        std::vector<std::u16string> paths;
        for (const std::string& stamp : stamps) {
            paths.push_back(FromFsPath(Backup(stamp)));
        }
        return paths;
    }
    bool Save(std::initializer_list<int32_t> ids) {
        ChannelStore store;
        for (const int32_t id : ids) {
            auto channel = std::make_unique<Channel>();
            channel->SetXmlUrl(
                WString(u"http://" + std::u16string(1, static_cast<char16_t>(u'0' + id)) + u"/"));
            channel->SetId(id);
            store.DefaultCategory().AddChannel(std::move(channel));
        }
        return SaveStore(store, StorePath());
    }
    std::string StoreText() const { return test::ReadFileBytes(dir / "QFChannels.opml"); }

    test::TempDir dir;
    test::FakeClock clock{At(5, 12), TimeZoneInfo{-120, 0, false}};
};

TEST_F(StoreBackupsTest, FirstSaveOfEachLocalDayKeepsTheFileItReplacesAndTheNewestSevenStay) {
    ASSERT_TRUE(Save({1}));
    EXPECT_FALSE(fs::exists(dir / "Backups"));
    const std::string first = StoreText();
    ASSERT_TRUE(Save({1, 2}));
    ASSERT_TRUE(Save({1, 2, 3}));
    EXPECT_EQ(ListStoreBackups(StorePath()), Backups({"2024-03-05"}));
    EXPECT_EQ(test::ReadFileBytes(Backup("2024-03-05")), first);

    // 23:30 UTC is already the next day here.
    clock.set(At(5, 23, 30));
    const std::string before = StoreText();
    ASSERT_TRUE(Save({1}));
    EXPECT_EQ(test::ReadFileBytes(Backup("2024-03-06")), before);
    for (uint16_t day = 7; day <= 12; ++day) {
        clock.set(At(day, 9));
        ASSERT_TRUE(Save({1}));
    }
    EXPECT_EQ(ListStoreBackups(StorePath()),
              Backups({"2024-03-12", "2024-03-11", "2024-03-10", "2024-03-09", "2024-03-08",
                       "2024-03-07", "2024-03-06"}));
    EXPECT_EQ(BackupDate(FromFsPath(Backup("2024-03-12"))), u"2024-03-12");
}

TEST_F(StoreBackupsTest, RestoreRefusesWhatIsNoStoreAndOtherwiseKeepsTheCurrentFileFirst) {
    ASSERT_TRUE(Save({1, 3}));
    ASSERT_TRUE(Save({1, 2, 3, 4}));
    const std::string current = StoreText();
    for (const char* file : {"Channel1.xml", "Channel2.xml", "Image2.gif", "Image3", "Channel4.xml",
                             "Channel4.xml.part-x1", "notes.txt"}) {
        test::WriteFileBytes(dir / file, "x");
    }
    test::WriteFileBytes(dir / "feed.xml", "<rss><channel/></rss>");
    ChannelStore store;
    ASSERT_TRUE(LoadStore(store, StorePath()));
    store.SetChannelStorePath(StorePath());

    EXPECT_EQ(RestoreStore(store, FromFsPath(dir / "feed.xml")), RestoreResult::kNotAStore);
    EXPECT_EQ(RestoreStore(store, FromFsPath(dir / "missing.opml")), RestoreResult::kNotAStore);
    EXPECT_EQ(StoreText(), current);
    EXPECT_EQ(ListStoreBackups(StorePath()).size(), 1u);
    EXPECT_TRUE(fs::exists(dir / "Channel2.xml"));

    // The backup of the day holds channels 1 and 3.
    clock.set(At(5, 13, 4, 5));
    const std::string restored = test::ReadFileBytes(Backup("2024-03-05"));
    ASSERT_EQ(RestoreStore(store, FromFsPath(Backup("2024-03-05"))), RestoreResult::kRestored);
    EXPECT_EQ(StoreText(), restored);
    EXPECT_EQ(ListStoreBackups(StorePath()), Backups({"2024-03-05-150405", "2024-03-05"}));
    EXPECT_EQ(test::ReadFileBytes(Backup("2024-03-05-150405")), current);
    std::vector<std::string> left;
    for (const auto& entry : fs::directory_iterator(dir.path())) {
        left.push_back(entry.path().filename().string());
    }
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left,
              (std::vector<std::string>{"Backups", "Channel1.xml", "Channel4.xml.part-x1", "Image3",
                                        "QFChannels.opml", "feed.xml", "notes.txt"}));

    // A second copy within the same second does not replace the first.
    ASSERT_EQ(RestoreStore(store, FromFsPath(Backup("2024-03-05"))), RestoreResult::kRestored);
    EXPECT_EQ(ListStoreBackups(StorePath()).front(), FromFsPath(Backup("2024-03-05-150405-2")));
}

} // namespace
} // namespace qf
