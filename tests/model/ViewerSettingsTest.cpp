#include "model/ViewerSettings.h"

#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

class ViewerSettingsTest : public ::testing::Test {
protected:
    std::filesystem::path settingsFile() const { return dir / "config/Orvelcraft/Quillfeed.conf"; }
    void WriteSettings(const std::string& text) const {
        std::filesystem::create_directories(settingsFile().parent_path());
        test::WriteFileBytes(settingsFile(), text);
    }
    void AddCard(const std::string& name) const {
        std::filesystem::create_directories(dir / "cards" / name);
    }

    test::TempDir dir;
    test::EnvVar config{"XDG_CONFIG_HOME", (dir / "config").string()};
    test::EnvVar cards{"QUILLFEED_CARDS", (dir / "cards").string()};
};

void ExpectDefaultSwitches(const ViewerSettings& settings) {
    EXPECT_EQ(settings.fitToScreen(), 1);
    EXPECT_EQ(settings.clearType(), 1);
    EXPECT_EQ(settings.showImages(), 1);
    EXPECT_EQ(settings.addressBar(), 1);
    EXPECT_EQ(settings.tolerantCertificates(), 0);
}

TEST_F(ViewerSettingsTest, FirstRunKeepsMainMemoryOrTakesTheFirstStorageCard) {
    ViewerSettings settings;
    EXPECT_FALSE(LoadSettings(settings));
    EXPECT_EQ(settings.storageVolume(), u"\\");
    EXPECT_EQ(settings.textSize(), 2);
    ExpectDefaultSwitches(settings);
    ASSERT_TRUE(SaveSettings(settings));
    EXPECT_EQ(test::ReadFileBytes(settingsFile()), "[Options]\n"
                                                   "StorageVolume=\\\\\n"
                                                   "FitToScreen=1\n"
                                                   "ClearType=1\n"
                                                   "TextSize=2\n"
                                                   "ShowImages=1\n"
                                                   "AddressBar=1\n"
                                                   "TolerantCertificates=0\n"
                                                   "Theme=0\n");

    // A settings file without options counts as a first run too.
    AddCard("Storage Card");
    AddCard("Backup, old");
    WriteSettings("[Window]\ngeometry=1\n");
    ViewerSettings onCard;
    EXPECT_FALSE(LoadSettings(onCard));
    EXPECT_EQ(onCard.storageVolume(), u"\\Backup, old");
    ASSERT_TRUE(SaveSettings(onCard));
    EXPECT_NE(test::ReadFileBytes(settingsFile()).find("StorageVolume=\"\\\\Backup, old\"\n"),
              std::string::npos);
    ViewerSettings reloaded;
    ASSERT_TRUE(LoadSettings(reloaded));
    EXPECT_EQ(reloaded.storageVolume(), u"\\Backup, old");
}

TEST_F(ViewerSettingsTest, OnlyTextSizeStoredLeavesTheOtherDefaults) {
    AddCard("SD");
    WriteSettings("[Options]\nTextSize=4\n");
    ViewerSettings settings;
    ASSERT_TRUE(LoadSettings(settings));
    EXPECT_EQ(settings.textSize(), 4);
    EXPECT_EQ(settings.shownTextSize(), ViewerSettings::kLargestTextSize);
    EXPECT_EQ(settings.storageVolume(), u"\\");
    ExpectDefaultSwitches(settings);
}

TEST_F(ViewerSettingsTest, SwitchesReadAsStoredAndAreWrittenAsOneOrZero) {
    WriteSettings("[Options]\nFitToScreen=5\nClearType=0\nTextSize=9\nShowImages=-3\n"
                  "AddressBar= 7 apples\nTolerantCertificates=2\nTheme=7\n");
    ViewerSettings settings;
    ASSERT_TRUE(LoadSettings(settings));
    EXPECT_EQ(settings.fitToScreen(), 5);
    EXPECT_EQ(settings.clearType(), 0);
    EXPECT_EQ(settings.textSize(), 9);
    EXPECT_EQ(settings.shownTextSize(), ViewerSettings::kMediumTextSize);
    EXPECT_EQ(settings.showImages(), -3);
    EXPECT_EQ(settings.addressBar(), 7);
    EXPECT_EQ(settings.tolerantCertificates(), 2);
    EXPECT_EQ(settings.shownTheme(), ViewerSettings::kFollowDesktopTheme);

    ASSERT_TRUE(SaveSettings(settings));
    EXPECT_EQ(test::ReadFileBytes(settingsFile()), "[Options]\n"
                                                   "FitToScreen=1\n"
                                                   "ClearType=0\n"
                                                   "TextSize=9\n"
                                                   "ShowImages=1\n"
                                                   "AddressBar=1\n"
                                                   "TolerantCertificates=1\n"
                                                   "Theme=7\n"
                                                   "StorageVolume=\\\\\n");
}

TEST_F(ViewerSettingsTest, SavingKeepsTheWindowSectionAndUnknownOptions) {
    WriteSettings("[Options]\n"
                  "TextSize=1\n"
                  "Future=yes\n"
                  "\n"
                  "[Window]\n"
                  "geometry=@ByteArray(\\x1\\xd9\\xd0\\xcb)\n"
                  "state=\"a,b\"\n");
    ViewerSettings settings;
    ASSERT_TRUE(LoadSettings(settings));
    settings.SetTextSize(3);
    settings.SetStorageVolume(WString(u"\\SD"));
    ASSERT_TRUE(SaveSettings(settings));

    EXPECT_EQ(test::ReadFileBytes(settingsFile()), "[Options]\n"
                                                   "TextSize=3\n"
                                                   "Future=yes\n"
                                                   "StorageVolume=\\\\SD\n"
                                                   "FitToScreen=1\n"
                                                   "ClearType=1\n"
                                                   "ShowImages=1\n"
                                                   "AddressBar=1\n"
                                                   "TolerantCertificates=0\n"
                                                   "Theme=0\n"
                                                   "\n"
                                                   "[Window]\n"
                                                   "geometry=@ByteArray(\\x1\\xd9\\xd0\\xcb)\n"
                                                   "state=\"a,b\"\n");
}

TEST_F(ViewerSettingsTest, FileThatCannotBeReadIsLeftAloneAndWithoutXdgTheFileIsInDotConfig) {
    std::filesystem::create_directories(settingsFile() / "not-a-file");
    ViewerSettings settings;
    EXPECT_FALSE(LoadSettings(settings));
    EXPECT_FALSE(SaveSettings(settings));
    EXPECT_TRUE(std::filesystem::is_directory(settingsFile() / "not-a-file"));

    test::EnvVar noConfig("XDG_CONFIG_HOME", std::nullopt);
    test::EnvVar home("HOME", (dir / "user").string());
    ASSERT_TRUE(SaveSettings(ViewerSettings()));
    EXPECT_TRUE(std::filesystem::exists(dir / "user/.config/Orvelcraft/Quillfeed.conf"));
}

} // namespace
} // namespace qf
