#include "model/ChannelStore.h"

#include "platform/StringTable.h"
#include "support/TestEnv.h"

#include <vector>

#include <gtest/gtest.h>

namespace qf {
namespace {

std::unique_ptr<Channel> MakeChannel(std::u16string_view url, int32_t id = 0) {
    auto channel = std::make_unique<Channel>();
    channel->SetXmlUrl(WString(url));
    channel->SetTitle(WString(url));
    channel->SetId(id);
    return channel;
}

Category& AddCategory(ChannelStore& store, std::u16string_view name) {
    return *store.AddCategory(std::make_unique<Category>(WString(name)));
}

// The default category is appended when there is none, and found ignoring case.
TEST(ChannelStore, AddChannelGoesToTheDefaultCategoryAndTakesTheStoreInterval) {
    ChannelStore other;
    AddCategory(other, u"News");
    Category& created = other.DefaultCategory();
    EXPECT_EQ(other.categories().at(1).get(), &created);
    created.SetName(WString(u"DEFAULT"));
    EXPECT_EQ(&other.DefaultCategory(), &created);
    EXPECT_EQ(other.categories().size(), 2u);

    ChannelStore store;
    store.SetNextId(7);
    store.SetUpdateValue(30);
    store.SetUpdateUnit(kUnitMinutes);
    Channel* channel = store.AddChannel(WString(u"http://feeds.example/rss"), WString(u"Example"));
    ASSERT_NE(channel, nullptr);
    ASSERT_EQ(store.categories().size(), 1u);
    EXPECT_EQ(store.categories()[0]->name(), LoadString(kStrDefaultCategory));
    EXPECT_EQ(store.categories()[0]->ChannelAt(0), channel);
    EXPECT_EQ(channel->id(), 7);
    EXPECT_EQ(store.nextId(), 8);
    EXPECT_EQ(channel->title(), u"Example");
    EXPECT_EQ(channel->updateValue(), 30);
    EXPECT_EQ(channel->updateUnit(), kUnitMinutes);
    // An address differing only in case is already there.
    EXPECT_EQ(store.AddChannel(WString(u"HTTP://FEEDS.example/RSS"), WString(u"two")), nullptr);
    EXPECT_EQ(store.categories()[0]->channels().size(), 1u);
    EXPECT_EQ(store.nextId(), 8);
}

TEST(ChannelStore, AddChannelGoesToShownCategoryOrFirstWhenOutOfRange) {
    ChannelStore store;
    Category& first = AddCategory(store, u"First");
    Category& second = AddCategory(store, u"Second");

    store.SetCategoryId(1);
    store.AddChannel(WString(u"http://a/"), WString(u"a"));
    store.SetCategoryId(5);
    store.AddChannel(WString(u"http://b/"), WString(u"b"));
    store.SetCategoryId(-1);
    store.AddChannel(WString(u"http://c/"), WString(u"c"));

    EXPECT_EQ(second.channels().size(), 1u);
    ASSERT_EQ(first.channels().size(), 2u);
    EXPECT_EQ(first.ChannelAt(0)->xmlUrl(), u"http://b/");
    // The same address may live in another category.
    store.SetCategoryId(1);
    EXPECT_NE(store.AddChannel(WString(u"http://c/"), WString(u"c")), nullptr);
}

// Each copy keeps its id only when no other channel has it, or it would share their cached files.
TEST(ChannelStore, MergeCopiesNewChannelsIntoCategoriesOfTheSameNameEachWithItsOwnId) {
    ChannelStore store;
    store.SetNextId(10);
    Category& news = AddCategory(store, u"News");
    news.AddChannel(MakeChannel(u"http://known/", 1));
    news.AddChannel(MakeChannel(u"http://eleven/", 11));

    ChannelStore::CategoryList source;
    source.push_back(std::make_unique<Category>(WString(u"NEWS")));
    source[0]->AddChannel(MakeChannel(u"HTTP://KNOWN/", 1));
    source[0]->AddChannel(MakeChannel(u"http://fresh/"));
    source[0]->AddChannel(MakeChannel(u"http://kept-id/", 42));
    source[0]->AddChannel(MakeChannel(u"http://taken-id/", 1));
    source[0]->AddChannel(MakeChannel(u"http://id-of-an-earlier-copy/", 42));
    source[0]->ChannelAt(1)->AddItem(std::make_unique<NewsItem>());
    source.push_back(std::make_unique<Category>(WString(u"Empty")));
    source.push_back(std::make_unique<Category>(WString(u"Sport")));
    source[2]->AddChannel(MakeChannel(u"http://sport/"));

    EXPECT_TRUE(store.MergeCategories(source));

    ASSERT_EQ(store.categories().size(), 2u);
    ASSERT_EQ(news.channels().size(), 6u);
    EXPECT_EQ(news.ChannelAt(2)->xmlUrl(), u"http://fresh/");
    EXPECT_TRUE(news.ChannelAt(2)->items().empty());
    std::vector<int32_t> ids;
    for (const auto& channel : news.channels()) {
        ids.push_back(channel->id());
    }
    EXPECT_EQ(ids, (std::vector<int32_t>{1, 11, 10, 42, 12, 13}));
    EXPECT_TRUE(store.Contains(u"HTTP://FRESH/"));
    EXPECT_EQ(store.categories()[1]->name(), u"Sport");
    EXPECT_EQ(store.categories()[1]->ChannelAt(0)->id(), 14);
    EXPECT_EQ(store.nextId(), 43);
    // The source keeps its records.
    EXPECT_EQ(source[0]->channels().size(), 5u);
    EXPECT_NE(news.ChannelAt(2), source[0]->ChannelAt(1));
}

TEST(ChannelStore, RemoveSearchesOnlyTheShownCategoryWhenOneIsShown) {
    ChannelStore store;
    Category& first = AddCategory(store, u"First");
    Category& second = AddCategory(store, u"Second");
    first.AddChannel(MakeChannel(u"http://a/"));
    Channel* target = second.AddChannel(MakeChannel(u"http://b/"));

    store.SetCategoryId(0);
    EXPECT_EQ(store.RemoveChannel(target), nullptr);
    EXPECT_EQ(second.channels().size(), 1u);

    store.SetCategoryId(-1);
    std::unique_ptr<Channel> removed = store.RemoveChannel(target);
    EXPECT_EQ(removed.get(), target);
    EXPECT_TRUE(second.channels().empty());
    EXPECT_EQ(first.channels().size(), 1u);
    EXPECT_EQ(store.RemoveChannel(target), nullptr);
}

class DueRules : public ::testing::Test {
protected:
    // 22 October 2007, 20:00:00 UTC.
    static constexpr SystemTime kLastUpdate{2007, 10, 1, 22, 20, 0, 0, 0};

    DueRules() : clock_(kLastUpdate) {
        last_.SetFromSystemTime(kLastUpdate);
        channel_ = AddCategory(store_, u"News").AddChannel(MakeChannel(u"http://a/"));
        channel_->SetUpdateTime(last_);
    }

    // Pins "now" `seconds` (less than four hours) after the last update.
    void Elapse(int seconds) {
        SystemTime now = kLastUpdate;
        const int total = now.hour * 3600 + seconds;
        now.hour = static_cast<uint16_t>(total / 3600);
        now.minute = static_cast<uint16_t>(total / 60 % 60);
        now.second = static_cast<uint16_t>(total % 60);
        clock_.set(now);
    }

    test::FakeClock clock_;
    FeedDate last_;
    ChannelStore store_;
    Channel* channel_ = nullptr;
};

// The channel's own interval wins over the store's, and an unset unit counts seconds.
TEST_F(DueRules, ChannelIsDueOnlyPastItsIntervalOrWhenNeverUpdated) {
    Elapse(3600);
    EXPECT_TRUE(store_.IsChannelDue(Channel()));
    EXPECT_FALSE(store_.IsChannelDue(*channel_));
    EXPECT_FALSE(store_.HasChannelDue());
    Elapse(3601);
    EXPECT_TRUE(store_.IsChannelDue(*channel_));
    EXPECT_TRUE(store_.HasChannelDue());

    channel_->SetUpdateValue(2);
    channel_->SetUpdateUnit(kUnitDays);
    EXPECT_FALSE(store_.IsChannelDue(*channel_));
    channel_->SetUpdateValue(90);
    channel_->SetUpdateUnit(kIntervalNotSet);
    Elapse(90);
    EXPECT_FALSE(store_.IsChannelDue(*channel_));
    Elapse(91);
    EXPECT_TRUE(store_.IsChannelDue(*channel_));
}

TEST_F(DueRules, AutoUpdateIsDueWhenNeverRunOrPastTheInterval) {
    store_.SetUpdateValue(5);
    store_.SetUpdateUnit(kUnitMinutes);
    Elapse(0);
    EXPECT_TRUE(store_.IsAutoUpdateDue());

    store_.SetUpdateDate(last_);
    Elapse(300);
    EXPECT_FALSE(store_.IsAutoUpdateDue());
    Elapse(301);
    EXPECT_TRUE(store_.IsAutoUpdateDue());
}

} // namespace
} // namespace qf
