#include "net/DataFolderTidy.h"

#include "support/TestEnv.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace qf {
namespace {

std::vector<std::string> FilesIn(const std::filesystem::path& folder) {
    std::vector<std::string> left;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        left.push_back(std::filesystem::relative(entry.path(), folder).string());
    }
    std::sort(left.begin(), left.end());
    return left;
}

TEST(DataFolderTidy, RemovesUnfinishedWritesAndOldPicturesOnly) {
    test::TempDir dir;
    test::EnvVar home{"QUILLFEED_HOME", dir.path().string()};
    test::EnvVar configHome{"XDG_CONFIG_HOME", (dir.path() / "config").string()};
    const auto data = dir.path() / "QFChannelsData";
    const auto pictures = data / "Images";
    const auto config = dir.path() / "config/Orvelcraft";
    std::filesystem::create_directories(pictures);
    std::filesystem::create_directories(data / "Backups");
    std::filesystem::create_directories(config);
    for (const auto& file :
         {data / "QFChannels.opml", data / "Channel1.xml", data / "Channel1.xml.part-a1B2c3",
          data / "QFChannels.opml.part-Zz0099", pictures / "PicNew", pictures / "PicOld",
          pictures / "PicNew.part-x", data / "Backups/QFChannels-2024-03-05.opml.part-q",
          config / "Quillfeed.conf", config / "Quillfeed.conf.part-k9", config / "Other.part-1"}) {
        test::WriteFileBytes(file, "x");
    }
    const auto now = std::filesystem::file_time_type::clock::now();
    std::filesystem::last_write_time(pictures / "PicOld",
                                     now - kPictureKeepTime - std::chrono::hours(1));
    std::filesystem::last_write_time(pictures / "PicNew",
                                     now - kPictureKeepTime + std::chrono::hours(1));

    TidyDataFolder(u"\\", now);

    EXPECT_EQ(FilesIn(data), (std::vector<std::string>{"Backups", "Channel1.xml", "Images",
                                                       "Images/PicNew", "QFChannels.opml"}));
    EXPECT_EQ(FilesIn(config), (std::vector<std::string>{"Other.part-1", "Quillfeed.conf"}));
}

} // namespace
} // namespace qf
