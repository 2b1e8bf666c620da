#include "CliFixture.h"
#include "platform/DataLock.h"

#include <nlohmann/json.hpp>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qf {
namespace {

using ::testing::HasSubstr;

// Each test is a fresh user: its own settings, lock and data folders.
class StoreCommandsTest : public test::CliFixture {
protected:
    std::filesystem::path StoreFile() const { return dir / "data/QFChannelsData/QFChannels.opml"; }
};

TEST_F(StoreCommandsTest, AddedChannelsAreListedAsTextAndJson) {
    EXPECT_EQ(Cli({"add", "http://a.example/rss"}).out, "1\n");
    EXPECT_TRUE(std::filesystem::exists(dir / "config/Orvelcraft/Quillfeed.conf"));
    EXPECT_EQ(Cli({"add", "http://b.example/", "Bé"}).out, "2\n");
    const auto duplicate = Cli({"add", "HTTP://A.example/rss", "Again"});
    EXPECT_EQ(duplicate.exitCode, 1);
    EXPECT_THAT(duplicate.err, HasSubstr("already holds"));

    const auto text = Cli({"list"});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_EQ(text.out, "Default\n  1  Channel #1  0/0\n  2  Bé  0/0\n");

    const auto json = nlohmann::json::parse(Cli({"list", "--json"}).out);
    EXPECT_EQ(json["nextID"], 3);
    EXPECT_EQ(json["categoryID"], -1);
    EXPECT_EQ(json["updateDate"], "");
    ASSERT_EQ(json["categories"].size(), 1u);
    EXPECT_EQ(json["categories"][0]["name"], "Default");
    const auto& channel = json["categories"][0]["channels"][1];
    EXPECT_EQ(channel["id"], 2);
    EXPECT_EQ(channel["title"], "Bé");
    EXPECT_EQ(channel["xmlUrl"], "http://b.example/");
    EXPECT_TRUE(channel["userName"].is_null());
    EXPECT_EQ(channel["hasPassword"], false);
    EXPECT_FALSE(channel.contains("password"));
    EXPECT_EQ(channel["updateValue"], 1);
    EXPECT_EQ(channel["updateTime"], "");
    EXPECT_EQ(channel.size(), 23u);
}

TEST_F(StoreCommandsTest, ExportedOpmlImportsIntoAnotherHome) {
    Cli({"add", "http://a.example/rss?x=1&y=2", "Tom & \"Jerry\""});
    const auto exported = Cli({"export"});
    ASSERT_EQ(exported.exitCode, 0);
    EXPECT_THAT(exported.out, HasSubstr("<opml version=\"2.0\">"));
    EXPECT_THAT(exported.out, HasSubstr("<outline text=\"Default\" title=\"Default\">"));
    EXPECT_THAT(exported.out,
                HasSubstr("<outline type=\"rss\" text=\"Tom &amp; &quot;Jerry&quot;\" "
                          "title=\"Tom &amp; &quot;Jerry&quot;\" "
                          "xmlUrl=\"http://a.example/rss?x=1&amp;y=2\"/>"));
    ASSERT_EQ(Cli({"export", (dir / "out.opml").string()}).exitCode, 0);
    EXPECT_EQ(test::ReadFileBytes(dir / "out.opml"), exported.out);

    const test::EnvVar otherHome{"QUILLFEED_HOME", (dir / "other").string()};
    const auto imported = Cli({"import", (dir / "out.opml").string()});
    EXPECT_EQ(imported.out, "Added 1 channel.\n");
    const auto json = nlohmann::json::parse(Cli({"list", "--json"}).out);
    EXPECT_EQ(json["categories"][0]["channels"][0]["title"], "Tom & \"Jerry\"");
}

TEST_F(StoreCommandsTest, DirectoryImportLeavesOutSubscribedAddresses) {
    Cli({"add", "HTTP://FEEDS.BBCI.CO.UK/NEWS/RSS.XML", "Mine"});
    const auto first = Cli({"import", "--directory"});
    EXPECT_EQ(first.exitCode, 0);
    EXPECT_EQ(first.out, "Added 63 channels.\n");
    EXPECT_EQ(Cli({"import", "--directory"}).out, "Added 0 channels.\n");
    const auto json = nlohmann::json::parse(Cli({"list", "--json"}).out);
    EXPECT_EQ(json["categories"].size(), 10u);

    EXPECT_EQ(Cli({"import", (dir / "missing.opml").string()}).exitCode, 1);
    EXPECT_EQ(Cli({"import"}).exitCode, 2);
    EXPECT_EQ(Cli({"import", "x.opml", "--directory"}).exitCode, 2);
}

TEST_F(StoreCommandsTest, SecondWriterIsRefusedWhileReadersGoOn) {
    Cli({"add", "http://a.example/"});
    const DataLock held;
    ASSERT_TRUE(held.held());
    const auto refused = Cli({"add", "http://b.example/"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.err, HasSubstr("in use by another Quillfeed program"));
    EXPECT_EQ(Cli({"import", "--directory"}).exitCode, 1);
    EXPECT_EQ(Cli({"list"}).exitCode, 0);
}

TEST_F(StoreCommandsTest, UnreadableStoreStopsReadersAndIsKeptAsideByWriters) {
    std::filesystem::create_directories(StoreFile().parent_path());
    test::WriteFileBytes(StoreFile(), "<opml><body>");
    const auto list = Cli({"list"});
    EXPECT_EQ(list.exitCode, 1);
    EXPECT_THAT(list.err,
                HasSubstr("Failed to open Channels file '" + StoreFile().string() + "'."));

    const auto add = Cli({"add", "http://a.example/"});
    EXPECT_EQ(add.exitCode, 0);
    EXPECT_THAT(add.err, HasSubstr(StoreFile().string() + ".broken"));
    EXPECT_EQ(test::ReadFileBytes(StoreFile().string() + ".broken"), "<opml><body>");
    EXPECT_EQ(Cli({"list"}).out, "Default\n  1  Channel #1  0/0\n");
}

TEST_F(StoreCommandsTest, WritersClearHalfWrittenFilesAndReadersLeaveThem) {
    Cli({"add", "http://a.example/"});
    const auto folder = StoreFile().parent_path();
    const std::vector<std::filesystem::path> parts{
        folder / "QFChannels.opml.part-a1B2c3", folder / "Images/Pic1.part-x",
        folder / "Backups/QFChannels-2024-03-05.opml.part-y",
        dir / "config/Orvelcraft/Quillfeed.conf.part-z"};
    for (const auto& file : parts) {
        std::filesystem::create_directories(file.parent_path());
        test::WriteFileBytes(file, "x");
    }
    // Old enough to go when the GUI starts, which the command line leaves to it.
    test::WriteFileBytes(folder / "Images/PicOld", "x");
    std::filesystem::last_write_time(folder / "Images/PicOld",
                                     std::filesystem::file_time_type::clock::now() -
                                         std::chrono::hours(24 * 365));

    EXPECT_EQ(Cli({"list"}).exitCode, 0);
    EXPECT_EQ(Cli({"restore", "--list"}).exitCode, 0);
    for (const auto& file : parts) {
        EXPECT_TRUE(std::filesystem::exists(file)) << file;
    }
    EXPECT_EQ(Cli({"add", "http://b.example/"}).exitCode, 0);
    for (const auto& file : parts) {
        EXPECT_FALSE(std::filesystem::exists(file)) << file;
    }
    EXPECT_TRUE(std::filesystem::exists(folder / "Images/PicOld"));
}

TEST_F(StoreCommandsTest, RestoreListsBackupsNewestFirstAndPutsOneInPlaceOfTheStore) {
    EXPECT_EQ(Cli({"restore", "--list"}).out, "");
    EXPECT_EQ(Cli({"restore", "--list", "--json"}).out, "[]\n");
    EXPECT_EQ(Cli({"restore"}).exitCode, 2);
    EXPECT_EQ(Cli({"restore", "--json", "x.opml"}).exitCode, 2);

    // An old backup holding channel 1 only, then today's, made by the second save.
    Cli({"add", "http://a.example/"});
    const auto backups = StoreFile().parent_path() / "Backups";
    std::filesystem::create_directories(backups);
    const auto old = backups / "QFChannels-2020-01-31.opml";
    std::filesystem::copy_file(StoreFile(), old);
    Cli({"add", "http://b.example/"});
    const auto list = Cli({"restore", "--list"});
    EXPECT_EQ(list.exitCode, 0);
    std::vector<std::string> lines;
    std::istringstream out(list.out);
    for (std::string line; std::getline(out, line);) {
        lines.push_back(line);
    }
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_THAT(lines[0], ::testing::MatchesRegex(".*/Backups/QFChannels-2...-..-..\\.opml"));
    EXPECT_EQ(lines[1], old.string());

    test::WriteFileBytes(dir / "feed.xml", "<rss/>");
    const std::string before = test::ReadFileBytes(StoreFile());
    const auto refused = Cli({"restore", (dir / "feed.xml").string()});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.err, HasSubstr((dir / "feed.xml").string()));
    EXPECT_EQ(test::ReadFileBytes(StoreFile()), before);

    EXPECT_EQ(Cli({"restore", old.string()}).exitCode, 0);
    EXPECT_EQ(Cli({"list"}).out, "Default\n  1  Channel #1  0/0\n");
    // The store as it was before is the newest backup now, beside today's.
    const auto json = nlohmann::json::parse(Cli({"restore", "--list", "--json"}).out);
    ASSERT_EQ(json.size(), 3u);
    EXPECT_EQ(test::ReadFileBytes(json[0].get<std::string>()), before);
    EXPECT_EQ(json[2], old.string());
}

} // namespace
} // namespace qf
