#include "model/Channel.h"

#include "model/Category.h"
#include "platform/StringTable.h"
#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

std::unique_ptr<NewsItem> MakeItem(std::u16string_view link, bool read) {
    auto item = std::make_unique<NewsItem>();
    item->SetLink(WString(link));
    item->SetRead(read ? 1 : 0);
    return item;
}

// Only a recount may bring the item count down to 0; counting an empty list keeps the old total.
TEST(Channel, CountSettersIgnoreGuardedValuesAndCountingKeepsTheTotalOfAnEmptyList) {
    Channel channel;
    channel.SetItemCount(5);
    channel.SetItemCount(0);
    channel.SetItemCount(-3);
    EXPECT_EQ(channel.itemCount(), 5);
    channel.SetNewItemCount(4);
    channel.SetNewItemCount(-1);
    EXPECT_EQ(channel.newItemCount(), 4);
    channel.SetNewItemCount(0);
    EXPECT_EQ(channel.newItemCount(), 0);
    channel.SetNewItemCount(9);
    channel.CountItems();
    EXPECT_EQ(channel.itemCount(), 5);
    EXPECT_EQ(channel.newItemCount(), 0);
    EXPECT_EQ(channel.RecountItems(), 0);

    channel.AddItem(MakeItem(u"a", true));
    channel.AddItem(MakeItem(u"b", false));
    channel.AddItem(MakeItem(u"c", false));
    channel.CountItems();
    EXPECT_EQ(channel.itemCount(), 3);
    EXPECT_EQ(channel.newItemCount(), 2);
    EXPECT_EQ(channel.ItemAt(1)->link(), u"b");
    EXPECT_EQ(channel.ItemAt(3), nullptr);
    EXPECT_EQ(channel.ItemAt(-1), nullptr);
}

// A channel's text stays when the source is null (as WString::set does), a category's too, but
// an empty category name becomes null and a story's text is cleared by a null source.
TEST(Channel, NullSourceKeepsCategoryTextsButClearsAStorys) {
    Category category(WString(u"News"));
    category.SetName(WString());
    EXPECT_EQ(category.name(), u"News");
    category.SetName(WString(u""));
    EXPECT_TRUE(category.name().isNull());

    NewsItem item;
    item.SetTitle(WString(u"Headline"));
    item.SetTitle(WString());
    EXPECT_TRUE(item.title().isNull());
}

TEST(Channel, CopyTakesIdentityAndOptionallyDuplicatesStories) {
    Channel source;
    source.SetId(12);
    source.SetTitle(WString(u"Source"));
    source.SetXmlUrl(WString(u"http://source/"));
    source.SetPassword(WString(u"secret"));
    source.AddItem(MakeItem(u"first", true));
    source.AddItem(MakeItem(u"second", false));

    Channel bare;
    bare.AddItem(MakeItem(u"own", false));
    bare.CopyFrom(source, false);
    EXPECT_EQ(bare.id(), 12);
    EXPECT_EQ(bare.title(), u"Source");
    EXPECT_EQ(bare.xmlUrl(), u"http://source/");
    EXPECT_TRUE(bare.password().isNull());
    ASSERT_EQ(bare.items().size(), 1u);

    bare.CopyFrom(source, true);
    ASSERT_EQ(bare.items().size(), 2u);
    EXPECT_EQ(bare.ItemAt(0)->link(), u"first");
    EXPECT_TRUE(bare.ItemAt(0)->isRead());
    EXPECT_NE(bare.ItemAt(0), source.ItemAt(0));
}

TEST(Channel, ErrorTextCarriesCodeAndLocalTimeStampWithNothingBetween) {
    // 22 October 2007, 22:16:44 UTC.
    test::FakeClock clock{SystemTime{2007, 10, 1, 22, 22, 16, 44, 0}};
    Channel channel;
    channel.SetErrorText(WString(u"plain"), false);
    EXPECT_EQ(channel.errorText(), u"plain");
    channel.SetErrorTextWithCode(kStrDownloadFailed, -3, true);
    EXPECT_EQ(channel.errorText(),
              u"Failed to download the channel; Error code: -3@10/22/07 10:16 PM");
    channel.SetErrorTextWithCode(kStrDownloadFailed, 404, false);
    EXPECT_EQ(channel.errorText(), u"Failed to download the channel; Error code: 404");

    clock.setZone(TimeZoneInfo{-120, 0, false});
    channel.SetErrorTextFromString(kStrParseFailed, true);
    EXPECT_EQ(channel.errorText(), u"Failed to parse the channel@10/23/07 12:16 AM");
}

TEST(Category, FindChannelTakesFirstAddressMatchIgnoringCase) {
    Category category;
    category.AddChannel(std::make_unique<Channel>());
    Channel* first = category.AddChannel(std::make_unique<Channel>());
    first->SetXmlUrl(WString(u"http://Feed/"));
    category.AddChannel(std::make_unique<Channel>())->SetXmlUrl(WString(u"HTTP://feed/"));

    EXPECT_EQ(category.FindChannel(u"http://feed/"), first);
    // A channel without an address matches nothing, not even the empty address.
    EXPECT_EQ(category.FindChannel(u""), nullptr);
}

} // namespace
} // namespace qf
