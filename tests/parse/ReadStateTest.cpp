#include "parse/ReadState.h"

#include "parse/Charset.h"
#include "support/ParsedFeed.h"
#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

using test::ParsedFeed;

std::unique_ptr<NewsItem> Story(const char16_t* link, std::u16string_view date, bool read) {
    auto item = std::make_unique<NewsItem>();
    item->SetLink(WString(link));
    FeedDate parsed;
    parsed.Parse(date);
    item->SetDate(parsed);
    item->SetRead(read ? 1 : 0);
    return item;
}

std::u16string Attribute(const XmlDocument& document, XmlNode element) {
    std::u16string value = u"<none>";
    document.GetAttribute(document.Attributes(element), u"qf_wasRead", value);
    return value;
}

// Short local dates depend on the zone, so the clock is pinned to UTC.
class CarryReadStatesTest : public ::testing::Test {
protected:
    test::FakeClock clock_{SystemTime{2007, 10, 0, 23, 12, 0, 0, 0}, TimeZoneInfo{}};
};

TEST_F(CarryReadStatesTest, StateSurvivesExactlyWhenLinkAndShownDateMatch) {
    Channel::ItemList old;
    old.push_back(Story(u"http://a/same", u"Mon, 22 Oct 2007 10:00:00 GMT", true));
    old.push_back(Story(u"http://a/redated", u"Mon, 22 Oct 2007 10:00:00 GMT", true));
    old.push_back(Story(u"http://a/twice", u"Mon, 22 Oct 2007 12:00:00 GMT", true));
    old.push_back(Story(nullptr, u"", true));
    ParsedFeed fresh(
        u"<rss><channel>"
        u"<item><link>HTTP://A/SAME</link><pubDate>Mon, 22 Oct 2007 10:00:59 GMT</pubDate></item>"
        u"<item><link>http://a/redated</link><pubDate>Mon, 22 Oct 2007 11:00 GMT</pubDate></item>"
        u"<item><link>http://a/twice</link><pubDate>Mon, 22 Oct 2007 11:00 GMT</pubDate></item>"
        u"<item><link>http://a/twice</link><pubDate>Mon, 22 Oct 2007 12:00 GMT</pubDate></item>"
        u"<item><guid>no link</guid></item></channel></rss>");
    ASSERT_TRUE(fresh.parsed);
    Channel& channel = fresh.channel;
    EXPECT_EQ(channel.newItemCount(), 5);

    EXPECT_TRUE(CarryReadStates(old, channel));
    EXPECT_TRUE(fresh.item(0).isRead()); // seconds do not show in the short form
    EXPECT_FALSE(fresh.item(1).isRead());
    EXPECT_FALSE(fresh.item(2).isRead());
    EXPECT_TRUE(fresh.item(3).isRead());
    EXPECT_FALSE(fresh.item(4).isRead());
    EXPECT_EQ(channel.newItemCount(), 3);
}

TEST(WriteReadStates, StampsEachElementFromTheFirstStoryWithItsKey) {
    ParsedFeed feed(u"<rss><channel><item qf_wasRead=\"maybe\"><link>http://a/1</link></item>"
                    u"<item><link>http://a/2</link></item><item><link>HTTP://A/1</link></item>"
                    u"<item><title>no key</title></item></channel>"
                    u"<item><link>http://a/2</link></item></rss>");
    ASSERT_TRUE(feed.parsed);
    feed.channel.items()[0]->SetRead(1);
    feed.channel.items()[2]->SetRead(0);
    feed.channel.AddItem(Story(u"http://a/other", u"", false));

    EXPECT_TRUE(WriteReadStates(feed.document, feed.channel));
    XmlNodeList items = feed.document.ElementsByTagName(u"item");
    EXPECT_EQ(Attribute(feed.document, XmlDocument::ListNext(items)), u"yes");
    EXPECT_EQ(Attribute(feed.document, XmlDocument::ListNext(items)), u"no");
    EXPECT_EQ(Attribute(feed.document, XmlDocument::ListNext(items)), u"yes");
    EXPECT_EQ(Attribute(feed.document, XmlDocument::ListNext(items)), u"<none>");
    // Every element of the name counts, wherever it stands.
    EXPECT_EQ(Attribute(feed.document, XmlDocument::ListNext(items)), u"no");

    feed.channel.SetFeedType(kFeedUnknown);
    EXPECT_FALSE(WriteReadStates(feed.document, feed.channel));
}

} // namespace
} // namespace qf
