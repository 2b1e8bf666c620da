#include "store/CachedFeeds.h"

#include "model/ChannelStore.h"
#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

namespace fs = std::filesystem;

constexpr std::u16string_view kVolume = u"\\";

// A cached feed whose declared encoding saving must keep: three stories, the second one read.
constexpr std::string_view kCachedFeed =
    "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\n"
    "<rss><channel><title>\xC1\xE0\xE9\xF2</title>"
    "<item><title>one</title><link>http://a/1</link></item>"
    "<item qf_wasRead=\"yes\"><title>two</title><link>http://a/2</link></item>"
    "<item><title>three</title><link>http://a/3</link></item></channel></rss>\n";

class CachedFeedsTest : public ::testing::Test {
protected:
    fs::path FeedFile(int32_t id) const {
        return dir / "QFChannelsData" / ("Channel" + std::to_string(id) + ".xml");
    }
    Channel& AddChannel(int32_t id, bool cached) {
        if (cached) {
            fs::create_directories(FeedFile(id).parent_path());
            test::WriteFileBytes(FeedFile(id), std::string(kCachedFeed));
        }
        auto channel = std::make_unique<Channel>();
        channel->SetId(id);
        channel->SetTitle(WString(u"Mine"));
        return *store.DefaultCategory().AddChannel(std::move(channel));
    }

    test::TempDir dir;
    test::EnvVar home{"QUILLFEED_HOME", dir.path().string()};
    ChannelStore store;
};

TEST_F(CachedFeedsTest, MarkAllLoadsStoriesThatAreNotInMemoryOnce) {
    Channel& channel = AddChannel(1, true);
    EXPECT_TRUE(MarkAllItems(channel, true, kVolume));
    EXPECT_EQ(channel.cacheFile(), u"Channel1.xml");
    EXPECT_EQ(channel.title(), u"Mine");
    EXPECT_EQ(channel.itemCount(), 3);
    EXPECT_EQ(channel.newItemCount(), 0);
    EXPECT_TRUE(channel.modified());
    EXPECT_TRUE(MarkAllItems(channel, false, kVolume));
    EXPECT_EQ(channel.newItemCount(), 3);

    Channel& notCached = AddChannel(2, false);
    EXPECT_FALSE(MarkAllItems(notCached, true, kVolume));
    EXPECT_FALSE(notCached.modified());
}

TEST_F(CachedFeedsTest, SavingWritesReadStatesOfModifiedChannelsOnly) {
    Channel& modified = AddChannel(1, true);
    Channel& untouched = AddChannel(2, true);
    AddChannel(3, false).SetModified(true);
    ASSERT_TRUE(LoadCachedFeed(modified, kVolume));
    ASSERT_TRUE(LoadCachedFeed(untouched, kVolume));
    modified.items()[0]->SetRead(1);
    modified.items()[1]->SetRead(0);
    modified.SetModified(true);
    untouched.items()[0]->SetRead(1);

    EXPECT_TRUE(SaveModifiedChannels(store));
    EXPECT_FALSE(modified.modified());
    EXPECT_EQ(test::ReadFileBytes(FeedFile(2)), kCachedFeed);
    EXPECT_FALSE(fs::exists(FeedFile(3)));
    const std::string saved = test::ReadFileBytes(FeedFile(1));
    EXPECT_NE(saved.find("encoding=\"windows-1251\"?>\n<rss><channel><title>\xC1\xE0\xE9\xF2"),
              std::string::npos);

    Channel reread;
    reread.SetId(1);
    ASSERT_TRUE(LoadCachedFeed(reread, kVolume));
    EXPECT_TRUE(reread.items()[0]->isRead());
    EXPECT_FALSE(reread.items()[1]->isRead());
    EXPECT_FALSE(reread.items()[2]->isRead());
}

} // namespace
} // namespace qf
