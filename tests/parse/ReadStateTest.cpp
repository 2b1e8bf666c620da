#include "parse/ReadState.h"

#include "parse/FeedType.h"
#include "platform/FsPath.h"
#include "platform/Text.h"
#include "support/ParsedFeed.h"
#include "support/TestEnv.h"

#include <array>
#include <vector>

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

std::u16string ReadState(XmlNode element) {
    return element.attribute(u"qf_wasRead").value_or(u"<none>");
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

// Stories that have no link of their own, in RSS and in Atom: two known by their guids (ids in
// Atom) though their titles are alike, one known only by its title, two sharing a link (and a
// date) and one whose link is empty. `fresh` is a story that a later download adds in front,
// empty link and a title like the others.
struct LinklessStories {
    std::u16string_view head;
    std::u16string_view fresh;
    std::u16string_view stories;
    std::u16string_view tail;

    std::u16string Feed(bool withFresh) const {
        return std::u16string(head) + std::u16string(withFresh ? fresh : u"") +
               std::u16string(stories) + std::u16string(tail);
    }
};

const LinklessStories kLinklessRss{
    u"<rss><channel>", u"<item><link/><guid>urn:0</guid><title>Same</title></item>",
    u"<item><guid>urn:1</guid><title>Same</title></item>"
    u"<item><guid>urn:2</guid><title>Same</title></item>"
    u"<item><title>Only a title</title></item>"
    u"<item><link>http://a/shared</link><pubDate>Mon, 22 Oct 2007 10:00:00 GMT</pubDate></item>"
    u"<item><link>HTTP://A/SHARED</link><pubDate>Mon, 22 Oct 2007 10:00:00 GMT</pubDate></item>"
    u"<item><link></link><guid>urn:6</guid></item>",
    u"</channel></rss>"};

const LinklessStories kLinklessAtom{
    u"<feed>",
    u"<entry><link type=\"text/html\" href=\"\"/><id>urn:0</id><title>Same</title></entry>",
    u"<entry><id>urn:1</id><title>Same</title></entry>"
    u"<entry><id>urn:2</id><title>Same</title></entry>"
    u"<entry><title>Only a title</title></entry>"
    u"<entry><link type=\"text/html\" href=\"http://a/shared\"/></entry>"
    u"<entry><link type=\"text/html\" href=\"http://a/shared\"/></entry>"
    u"<entry><link type=\"text/html\" href=\"\"/><id>urn:6</id></entry>",
    u"</feed>"};

constexpr std::array<bool, 6> kLinklessRead = {false, true, true, false, true, true};

std::vector<bool> ReadFlags(const Channel& channel) {
    std::vector<bool> flags;
    for (const auto& item : channel.items()) {
        flags.push_back(item->isRead());
    }
    return flags;
}

void MarkLinklessRead(Channel& channel) {
    for (std::size_t i = 0; i < kLinklessRead.size(); ++i) {
        channel.items().at(i)->SetRead(kLinklessRead[i] ? 1 : 0);
    }
}

TEST(WriteReadStates, StampsTheNthElementWithAKeyFromTheNthStoryWithIt) {
    ParsedFeed feed(u"<rss><channel><item qf_wasRead=\"maybe\"><link>http://a/1</link></item>"
                    u"<item><link>http://a/2</link></item><item><link>HTTP://A/1</link></item>"
                    u"<item><description>no key</description></item></channel>"
                    u"<item><link>http://a/3</link></item></rss>");
    ASSERT_TRUE(feed.parsed);
    feed.channel.items()[0]->SetRead(1);
    feed.channel.items()[2]->SetRead(0);
    feed.channel.AddItem(Story(u"http://a/3", u"", true));

    EXPECT_TRUE(WriteReadStates(feed.document, feed.channel));
    const std::vector<XmlNode> items = feed.document.ElementsByTagName(u"item");
    EXPECT_EQ(ReadState(items.at(0)), u"yes");
    EXPECT_EQ(ReadState(items.at(1)), u"no");
    EXPECT_EQ(ReadState(items.at(2)), u"no");
    EXPECT_EQ(ReadState(items.at(3)), u"<none>");
    // Every element of the name counts, wherever it stands.
    EXPECT_EQ(ReadState(items.at(4)), u"yes");

    feed.channel.SetFeedType(kFeedUnknown);
    EXPECT_FALSE(WriteReadStates(feed.document, feed.channel));
}

TEST_F(CarryReadStatesTest, StoriesWithoutOwnLinksKeepTheirStatesInTheCachedFeedAndAcrossARefresh) {
    const test::TempDir dir;
    const std::u16string path = FromFsPath(dir / "Channel1.xml");
    for (const LinklessStories* dialect : {&kLinklessRss, &kLinklessAtom}) {
        SCOPED_TRACE(Utf16ToUtf8(dialect->head));
        ParsedFeed old(dialect->Feed(false));
        ASSERT_TRUE(old.parsed);
        MarkLinklessRead(old.channel);
        ASSERT_TRUE(WriteReadStates(old.document, old.channel));
        ASSERT_TRUE(old.document.Save(path));
        XmlDocument cached;
        Channel reloaded;
        ASSERT_TRUE(cached.LoadFile(path));
        ASSERT_TRUE(ParseFeed(cached, reloaded, false));
        EXPECT_EQ(ReadFlags(reloaded), ReadFlags(old.channel));
        EXPECT_EQ(reloaded.newItemCount(), 2);

        ParsedFeed fresh(dialect->Feed(true));
        ASSERT_TRUE(fresh.parsed);
        EXPECT_TRUE(CarryReadStates(old.channel.items(), fresh.channel));
        std::vector<bool> expected = ReadFlags(old.channel);
        expected.insert(expected.begin(), false);
        EXPECT_EQ(ReadFlags(fresh.channel), expected);
        EXPECT_EQ(fresh.channel.newItemCount(), 3);
    }
}

} // namespace
} // namespace qf
