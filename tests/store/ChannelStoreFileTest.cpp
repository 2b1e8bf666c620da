#include "store/ChannelStoreFile.h"

#include "model/ChannelStore.h"
#include "platform/Files.h"
#include "platform/FsPath.h"
#include "support/TestEnv.h"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

namespace qf {
namespace {

FeedDate Date(int year, int month, int day, int hour, int minute, int second) {
    FeedDate date;
    date.SetFields(year, month, day, hour, minute, second, 0);
    return date;
}

Channel& AddChannel(Category& category, std::u16string_view url, int32_t id) {
    auto channel = std::make_unique<Channel>();
    channel->SetXmlUrl(WString(url));
    channel->SetId(id);
    return *category.AddChannel(std::move(channel));
}

// A store with every option set away from its default, a channel with every field set (what
// its server said included) and a channel with nothing but its address and id.
void FillStore(ChannelStore& store) {
    store.SetCategoryId(1);
    store.SetNextId(12);
    store.SetNewChannels(1);
    store.SetSortBy(kSortByDate);
    store.SetSortOrder(1);
    store.SetNewHeadlines(1);
    store.SetAutoUpdate(0);
    store.SetUpdateValue(30);
    store.SetUpdateUnit(kUnitMinutes);
    store.SetUpdateDate(Date(2007, 10, 22, 22, 16, 44));
    Category& news = *store.AddCategory(std::make_unique<Category>(WString(u"Néws & co")));
    Channel& full = AddChannel(news, u"http://a.example/rss?x=1&y=2", 7);
    full.SetEncoding(WString(u"windows-1251"));
    full.SetTitle(WString(u"Ада \"<quoted>\""));
    full.SetUserName(WString(u"anna"));
    full.SetPassword(WString(u""));
    full.SetUpdateValue(2);
    full.SetUpdateUnit(kUnitDays);
    full.SetItemCount(20);
    full.SetNewItemCount(3);
    full.SetMatchCount(4);
    full.SetUpdateTime(Date(2008, 1, 2, 3, 4, 5));
    full.SetHasErrors(1);
    full.SetErrorText(WString(u"Failed to parse the channel@1/2/08 3:04 AM"), false);
    full.server().etag = WString(u"W/\"a b\"");
    full.server().lastModified = WString(u"Tue, 01 Jan 2008 00:00:00 GMT");
    full.server().notBefore = Date(2008, 1, 3, 4, 5, 6);
    full.server().freshUntil = Date(2008, 1, 2, 4, 4, 5);
    full.server().gone = true;
    AddChannel(news, u"http://b.example/", 11);
}

class ChannelStoreFileTest : public ::testing::Test {
protected:
    std::u16string StorePath() const { return FromFsPath(dir / "QFChannels.opml"); }
    void WriteStore(const std::string& text) const {
        test::WriteFileBytes(dir / "QFChannels.opml", text);
    }

    test::TempDir dir;
};

TEST_F(ChannelStoreFileTest, SavedFileListsEverythingInAFixedOrderAndReloadsToTheSameFile) {
    ChannelStore store;
    FillStore(store);
    ASSERT_TRUE(SaveStore(store, StorePath()));
    EXPECT_EQ(
        test::ReadFileBytes(dir / "QFChannels.opml"),
        "<?xml version=\"1.0\"?>\n"
        "<opml version=\"1.0\"><head><options>"
        "<channels categoryID=\"1\" nextID=\"12\" newChannels=\"yes\"/>"
        "<channel sortBy=\"1\" sortOrder=\"1\" newHeadlines=\"yes\" autoUpdate=\"no\" "
        "updateValue=\"30\" updateUnit=\"0\" updateDate=\"Mon, 22 Oct 2007 22:16:44 GMT\"/>"
        "</options></head><body><outline text=\"Néws &amp; co\">"
        "<outline encoding=\"windows-1251\" ID=\"7\" text=\"Ада &quot;&lt;quoted&gt;&quot;\" "
        "xmlUrl=\"http://a.example/rss?x=1&amp;y=2\" userName=\"anna\" password=\"\" "
        "updateValue=\"2\" updateUnit=\"2\" itemCount=\"20\" newItemCount=\"3\" matchCount=\"4\" "
        "updateTime=\"Wed, 2 Jan 2008 03:04:05 GMT\" qf_hasErrors=\"yes\" "
        "qf_errorText=\"Failed to parse the channel@1/2/08 3:04 AM\" qf_etag=\"W/&quot;a b&quot;\" "
        "qf_lastModified=\"Tue, 01 Jan 2008 00:00:00 GMT\" "
        "qf_notBefore=\"Thu, 3 Jan 2008 04:05:06 GMT\" "
        "qf_freshUntil=\"Wed, 2 Jan 2008 04:04:05 GMT\" qf_gone=\"yes\"/>"
        "<outline ID=\"11\" xmlUrl=\"http://b.example/\" updateValue=\"-1\" updateUnit=\"-1\" "
        "itemCount=\"0\" newItemCount=\"0\" matchCount=\"0\" updateTime=\"\" qf_hasErrors=\"no\"/>"
        "</outline></body></opml>\n");

    // Saving what was loaded gives the same file again, except for newChannels, which is written
    // as yes/no but read as a number.
    std::string expected = test::ReadFileBytes(dir / "QFChannels.opml");
    expected.replace(expected.find("newChannels=\"yes\""), 17, "newChannels=\"no\"");
    ChannelStore reloaded;
    ASSERT_TRUE(LoadStore(reloaded, StorePath()));
    EXPECT_EQ(reloaded.newChannels(), 0);
    const Channel& full = *reloaded.categories()[0]->channels()[0];
    EXPECT_EQ(full.codePage(), 1251);
    EXPECT_EQ(full.state(), kChannelFailed);
    EXPECT_TRUE(reloaded.categories()[0]->channels()[1]->password().isNull());
    EXPECT_EQ(full.server().etag, u"W/\"a b\"");
    EXPECT_TRUE(full.server().gone);
    EXPECT_FALSE(reloaded.categories()[0]->channels()[1]->server().notBefore.valid());
    ASSERT_TRUE(SaveStore(reloaded, StorePath()));
    EXPECT_EQ(test::ReadFileBytes(dir / "QFChannels.opml"), expected);
}

TEST_F(ChannelStoreFileTest, BodyIsReadLenientlyAndFlattensNestedGroups) {
    WriteStore(R"(<?xml version="1.0"?><OPML><BODY>
        <outline text="Loose" xmlUrl="http://loose/" ID="4"/>
        <outline title="Titled">
          <outline text="Group"><outline><OUTLINE text="Deep" xmlUrl="http://deep/" ID="0"/>
          </outline></outline>
          <item text="Not an outline" xmlUrl="http://skipped/"/>
          <outline text="Shouting" xmlUrl="http://shout/" qf_hasErrors="YES"/>
        </outline>
        <outline/>
        <outline text="default" xmlUrl="http://second-loose/" ID="2"/>
      </BODY></OPML>)");
    ChannelStore store;
    ASSERT_TRUE(LoadStore(store, StorePath()));

    EXPECT_EQ(store.categoryId(), -1);
    EXPECT_EQ(store.updateValue(), 1);
    EXPECT_EQ(store.updateUnit(), kUnitHours);
    ASSERT_EQ(store.categories().size(), 3u);
    const Category& loose = *store.categories()[0];
    EXPECT_EQ(loose.name(), u"Default");
    ASSERT_EQ(loose.channels().size(), 2u);
    EXPECT_EQ(loose.channels()[1]->xmlUrl(), u"http://second-loose/");

    const Category& titled = *store.categories()[1];
    EXPECT_EQ(titled.name(), u"Titled");
    ASSERT_EQ(titled.channels().size(), 2u);
    const Channel& deep = *titled.channels()[0];
    const Channel& shouting = *titled.channels()[1];
    EXPECT_EQ(deep.title(), u"Deep");
    // A stored 0 takes the next id while the ids read so far have raised it past 4.
    EXPECT_EQ(deep.id(), 5);
    EXPECT_EQ(shouting.id(), 0);
    EXPECT_EQ(shouting.hasErrors(), 1);
    EXPECT_EQ(shouting.state(), kChannelFailed);

    EXPECT_TRUE(store.categories()[2]->name().isNull());
    EXPECT_EQ(store.nextId(), 6);
}

// Channels sharing an id would share their cached files: the first keeps it, the later ones take
// fresh ids. An id the file gives wins over one the load handed out for a stored 0, and channels
// without an id (0) count as sharing it too. A next id left at 0 follows the largest id.
TEST_F(ChannelStoreFileTest, ChannelsSharingAnIdKeepTheFirstAndTheOthersTakeFreshIds) {
    WriteStore(R"(<opml><head><options><channels nextID="3"/></options></head><body>
        <outline text="A"><outline xmlUrl="http://a/" ID="5"/><outline xmlUrl="http://b/" ID="0"/>
          <outline xmlUrl="http://c/" ID="6"/><outline xmlUrl="http://d/"/></outline>
        <outline text="B"><outline xmlUrl="http://e/" ID="5"/><outline xmlUrl="http://f/"/>
        </outline></body></opml>)");
    ChannelStore store;
    ASSERT_TRUE(LoadStore(store, StorePath()));
    std::vector<int32_t> ids;
    for (const auto& category : store.categories()) {
        for (const auto& channel : category->channels()) {
            ids.push_back(channel->id());
        }
    }
    EXPECT_EQ(ids, (std::vector<int32_t>{5, 7, 6, 0, 8, 9}));
    EXPECT_EQ(store.nextId(), 10);

    WriteStore(R"(<opml><head><options><channels nextID="0" newChannels="1"/></options></head>
        <body><outline text="A"><outline xmlUrl="http://3/" ID="3"/><outline xmlUrl="http://x/"/>
        </outline></body></opml>)");
    ChannelStore zero;
    ASSERT_TRUE(LoadStore(zero, StorePath()));
    EXPECT_EQ(zero.newChannels(), 1);
    EXPECT_EQ(zero.nextId(), 4);
}

TEST_F(ChannelStoreFileTest, MissingOrForeignFilesFailToLoad) {
    ChannelStore store;
    EXPECT_FALSE(LoadStore(store, StorePath()));
    EXPECT_TRUE(store.loaded());
    EXPECT_TRUE(store.unreadableStorePath().empty());

    WriteStore("<?xml version=\"1.0\"?><rss><channel/></rss>");
    EXPECT_FALSE(LoadStore(store, StorePath()));
    EXPECT_TRUE(store.categories().empty());
    EXPECT_EQ(OpenStoreFailedText(u"/data/QFChannels.opml"),
              u"Failed to open Channels file '/data/QFChannels.opml'.");
}

TEST_F(ChannelStoreFileTest, UnreadableFileIsMovedAsideByTheFirstSaveNotOverwritten) {
    test::WriteFileBytes(dir / "QFChannels.opml.broken", "an older casualty");
    WriteStore("<opml><body><outline text=\"cut off");
    ChannelStore store;
    ASSERT_FALSE(LoadStore(store, StorePath()));
    AddChannel(store.DefaultCategory(), u"http://new/", 1);

    std::u16string notice;
    ASSERT_TRUE(SaveStore(store, StorePath(), &notice));
    EXPECT_EQ(test::ReadFileBytes(dir / "QFChannels.opml.broken.1"),
              "<opml><body><outline text=\"cut off");
    EXPECT_EQ(test::ReadFileBytes(dir / "QFChannels.opml.broken"), "an older casualty");
    EXPECT_NE(notice.find(FromFsPath(dir / "QFChannels.opml.broken.1")), std::u16string::npos);

    notice.clear();
    ASSERT_TRUE(SaveStore(store, StorePath(), &notice));
    EXPECT_TRUE(notice.empty());
    EXPECT_FALSE(std::filesystem::exists(dir / "QFChannels.opml.broken.2"));
    ChannelStore reloaded;
    EXPECT_TRUE(LoadStore(reloaded, StorePath()));
}

TEST_F(ChannelStoreFileTest, CloseSavesToTheKeptPathAndEmptiesTheStore) {
    ChannelStore store;
    store.SetChannelStorePath(StorePath());
    FillStore(store);
    store.SetLoaded(true);
    ASSERT_TRUE(CloseStore(store));
    EXPECT_TRUE(store.categories().empty());
    EXPECT_FALSE(store.loaded());
    EXPECT_TRUE(store.channelStorePath().empty());

    ChannelStore reloaded;
    ASSERT_TRUE(LoadStore(reloaded, StorePath()));
    EXPECT_EQ(reloaded.categories().size(), 1u);
}

// A writer killed at any moment of a save leaves a store file that loads: the old one or the new.
TEST_F(ChannelStoreFileTest, WriterKilledWhileSavingLeavesAWholeStore) {
    ChannelStore store;
    for (int c = 0; c < 20; ++c) {
        Category& category = *store.AddCategory(std::make_unique<Category>(WString(u"Group")));
        for (int i = 0; i < 50; ++i) {
            AddChannel(category, u"http://feeds.example/" + AsciiToUtf16(std::to_string(i)),
                       c * 50 + i + 1);
        }
    }
    ASSERT_TRUE(SaveStore(store, StorePath()));

    for (int round = 0; round < 30; ++round) {
        int ready[2];
        ASSERT_EQ(::pipe(ready), 0);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::close(ready[0]);
            for (int32_t n = 1;; ++n) {
                store.SetNextId(n);
                if (n == 2) {
                    (void)!::write(ready[1], "x", 1);
                }
                SaveStore(store, StorePath());
            }
        }
        ::close(ready[1]);
        char byte = 0;
        ASSERT_EQ(::read(ready[0], &byte, 1), 1);
        ::close(ready[0]);
        // Vary the moment of the kill across the rounds so that it lands in every stage of a save.
        [[maybe_unused]] volatile int sink = 0;
        for (int spin = 0; spin < round * 20000; ++spin) {
            sink = spin;
        }
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);

        ChannelStore reloaded;
        ASSERT_TRUE(LoadStore(reloaded, StorePath())) << "round " << round;
        ASSERT_EQ(reloaded.categories().size(), 20u);
        ASSERT_EQ(reloaded.categories().back()->channels().size(), 50u);
    }
}

} // namespace
} // namespace qf
