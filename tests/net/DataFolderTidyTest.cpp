#include "net/DataFolderTidy.h"

#include "support/TestEnv.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace qf {
namespace {

TEST(DataFolderTidy, RemovesUnfinishedWritesAndOldPicturesOnly) {
    test::TempDir dir;
    test::EnvVar home{"QUILLFEED_HOME", dir.path().string()};
    const auto data = dir.path() / "QFChannelsData";
    const auto pictures = data / "Images";
    std::filesystem::create_directories(pictures);
    for (const auto& file :
         {data / "QFChannels.opml", data / "Channel1.xml", data / "Channel1.xml.part-a1B2c3",
          data / "QFChannels.opml.part-Zz0099", pictures / "PicNew", pictures / "PicOld",
          pictures / "PicNew.part-x"}) {
        test::WriteFileBytes(file, "x");
    }
    const auto now = std::filesystem::file_time_type::clock::now();
    std::filesystem::last_write_time(pictures / "PicOld",
                                     now - kPictureKeepTime - std::chrono::hours(1));
    std::filesystem::last_write_time(pictures / "PicNew",
                                     now - kPictureKeepTime + std::chrono::hours(1));

    TidyDataFolder(u"\\", now);

    std::vector<std::string> left;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(data)) {
        left.push_back(std::filesystem::relative(entry.path(), data).string());
    }
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, (std::vector<std::string>{"Channel1.xml", "Images", "Images/PicNew",
                                              "QFChannels.opml"}));
}

} // namespace
} // namespace qf
