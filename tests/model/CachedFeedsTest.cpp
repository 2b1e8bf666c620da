#include "model/CachedFeeds.h"

#include "model/ChannelStore.h"
#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

namespace fs = std::filesystem;

constexpr std::u16string_view kVolume = u"\\";

// A cached RSS feed with a declared encoding that saving must keep: three stories, the second
// one read.
constexpr std::string_view kCachedFeed =
    "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\n"
    "<rss version=\"2.0\"><channel><title>\xC1\xE0\xE9\xF2</title>"
    "<image><url>http://a/logo.png</url></image>"
    "<item><title>one</title><link>http://a/1</link></item>"
    "<item qf_wasRead=\"yes\"><title>two</title><link>http://a/2</link></item>"
    "<item><title>three</title><link>http://a/3</link></item></channel></rss>\n";

class CachedFeedsTest : public ::testing::Test {
protected:
    fs::path data() const { return dir / "QFChannelsData"; }
    void WriteCachedFeed(int32_t id, std::string_view bytes = kCachedFeed) const {
        fs::create_directories(data());
        test::WriteFileBytes(data() / ("Channel" + std::to_string(id) + ".xml"),
                             std::string(bytes));
    }
    std::string CachedFeed(int32_t id) const {
        return test::ReadFileBytes(data() / ("Channel" + std::to_string(id) + ".xml"));
    }
    static Channel& AddChannel(ChannelStore& store, int32_t id) {
        auto channel = std::make_unique<Channel>();
        channel->SetId(id);
        channel->SetTitle(WString(u"Mine"));
        return *store.DefaultCategory().AddChannel(std::move(channel));
    }

    test::TempDir dir;
    test::EnvVar home{"QUILLFEED_HOME", dir.path().string()};
};

TEST_F(CachedFeedsTest, LoadingReplacesTheStoriesAndKeepsTheTitle) {
    WriteCachedFeed(4);
    Channel channel;
    channel.SetId(4);
    channel.SetTitle(WString(u"Mine"));
    EXPECT_TRUE(LoadCachedFeed(channel, kVolume));
    EXPECT_TRUE(LoadCachedFeed(channel, kVolume));
    EXPECT_EQ(channel.cacheFile(), u"Channel4.xml");
    EXPECT_EQ(channel.title(), u"Mine");
    ASSERT_EQ(channel.items().size(), 3u);
    EXPECT_EQ(channel.newItemCount(), 2);

    Channel missing;
    missing.SetId(5);
    EXPECT_FALSE(LoadCachedFeed(missing, kVolume));
}

TEST_F(CachedFeedsTest, MarkAllLoadsStoriesThatAreNotInMemory) {
    WriteCachedFeed(1);
    Channel channel;
    channel.SetId(1);
    EXPECT_TRUE(MarkAllItems(channel, true, kVolume));
    EXPECT_EQ(channel.itemCount(), 3);
    EXPECT_EQ(channel.newItemCount(), 0);
    EXPECT_EQ(channel.modified(), 1);

    EXPECT_TRUE(MarkAllItems(channel, false, kVolume));
    EXPECT_EQ(channel.newItemCount(), 3);

    Channel empty;
    empty.SetId(2);
    EXPECT_FALSE(MarkAllItems(empty, true, kVolume));
    EXPECT_EQ(empty.modified(), 0);
}

TEST_F(CachedFeedsTest, SavingWritesReadStatesOfModifiedChannelsOnly) {
    ChannelStore store;
    Channel& modified = AddChannel(store, 1);
    Channel& untouched = AddChannel(store, 2);
    Channel& withoutFile = AddChannel(store, 3);
    WriteCachedFeed(1);
    WriteCachedFeed(2);
    ASSERT_TRUE(LoadCachedFeed(modified, kVolume));
    ASSERT_TRUE(LoadCachedFeed(untouched, kVolume));
    modified.items()[0]->SetRead(1);
    modified.items()[1]->SetRead(0);
    modified.SetModified(1);
    untouched.items()[0]->SetRead(1);
    withoutFile.SetModified(1);

    EXPECT_TRUE(SaveModifiedChannels(store));
    EXPECT_EQ(modified.modified(), 0);
    EXPECT_EQ(CachedFeed(2), kCachedFeed);
    EXPECT_FALSE(fs::exists(data() / "Channel3.xml"));

    const std::string saved = CachedFeed(1);
    EXPECT_NE(saved.find("encoding=\"windows-1251\""), std::string::npos);
    EXPECT_NE(saved.find("\xC1\xE0\xE9\xF2"), std::string::npos);
    Channel reread;
    reread.SetId(1);
    ASSERT_TRUE(LoadCachedFeed(reread, kVolume));
    EXPECT_TRUE(reread.items()[0]->isRead());
    EXPECT_FALSE(reread.items()[1]->isRead());
    EXPECT_FALSE(reread.items()[2]->isRead());
}

TEST_F(CachedFeedsTest, DeletingFindsTheLogoThroughTheCachedFeed) {
    WriteCachedFeed(6);
    test::WriteFileBytes(data() / "Image6.png", "png");
    test::WriteFileBytes(data() / "Image7", "other");
    Channel channel;
    channel.SetId(6);
    EXPECT_TRUE(DeleteChannelFiles(channel, kVolume));
    EXPECT_EQ(channel.image().localFile(), u"Image6.png");
    EXPECT_FALSE(fs::exists(data() / "Image6.png"));
    EXPECT_FALSE(fs::exists(data() / "Channel6.xml"));
    EXPECT_TRUE(fs::exists(data() / "Image7"));

    Channel nothingCached;
    nothingCached.SetId(8);
    EXPECT_TRUE(DeleteChannelFiles(nothingCached, kVolume));
    EXPECT_EQ(nothingCached.image().localFile(), u"Image8");
}

} // namespace
} // namespace qf
