#include "parse/RssReader.h"

#include "parse/FeedType.h"
#include "support/ParsedFeed.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

using test::ParsedFeed;

TEST(RssReader, ReadsChannelImageAndStoriesWhateverTheCaseOfTheirNames) {
    const ParsedFeed feed(u"<?xml version=\"1.0\"?><RSS version=\"2.0\"><Channel>"
                          u"<TITLE>News</TITLE><lastbuilddate>Mon, 22 Oct 2007 22:16:44 GMT"
                          u"</lastbuilddate><image><title>Logo</title><url>http://a/l.gif?s=1</url>"
                          u"<width>88px</width><height>tall</height></image>"
                          u"<item><Title>One</Title><LINK>http://a/1</LINK>"
                          u"<PUBDATE>Tue, 23 Oct 2007 08:00:00 GMT</PUBDATE>"
                          u"<description><![CDATA[<p>Hi</p>]]></description><guid>g1</guid></item>"
                          u"<item><title>first</title><title>last</title><guid>g2</guid></item>"
                          u"</Channel></RSS>",
                          true, 7);
    ASSERT_TRUE(feed.parsed);
    const Channel& channel = feed.channel;
    EXPECT_EQ(channel.feedType(), kFeedRss);
    EXPECT_EQ(channel.title(), u"News");
    EXPECT_EQ(channel.lastBuildDate().FormatRfc822(), u"Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_EQ(channel.image().localFile(), u"Image7.gif");
    EXPECT_EQ(channel.image().width(), 88);
    EXPECT_EQ(channel.image().height(), 0);
    ASSERT_EQ(channel.items().size(), 2u);
    EXPECT_EQ(feed.item(0).link(), u"http://a/1");
    EXPECT_EQ(feed.item(0).date().FormatRfc822(), u"Tue, 23 Oct 2007 08:00:00 GMT");
    EXPECT_EQ(feed.item(0).description(), u"<p>Hi</p>");
    EXPECT_EQ(feed.item(1).title(), u"last");
    EXPECT_EQ(feed.item(0).guid(), u"g1");
    EXPECT_TRUE(feed.item(1).link().isNull()); // the guid never stands in for the link
}

TEST(RssReader, ReadFlagIsYesInAnyCaseAndCountsFollow) {
    const ParsedFeed feed(u"<rss><channel><item qf_wasRead=\"YES\"/><item QF_WASREAD=\"yes\"/>"
                          u"<item qf_wasRead=\"1\"/><item qf_wasRead=\"true\"/><item/>"
                          u"</channel></rss>");
    ASSERT_TRUE(feed.parsed);
    EXPECT_TRUE(feed.item(0).isRead());
    EXPECT_TRUE(feed.item(1).isRead());
    EXPECT_FALSE(feed.item(2).isRead());
    EXPECT_FALSE(feed.item(3).isRead());
    EXPECT_EQ(feed.channel.itemCount(), 5);
    EXPECT_EQ(feed.channel.newItemCount(), 3);
}

TEST(RssReader, LanguageAppliesToLaterStoriesOnlyAndOnlyAFirstChannelElementCounts) {
    const ParsedFeed feed(u"<rss><channel><item><title>before</title></item>"
                          u"<language>ja</language><item><title>after</title></item>"
                          u"<language>en</language><item/></channel></rss>");
    ASSERT_TRUE(feed.parsed);
    EXPECT_EQ(feed.item(0).codePage(), 0);
    EXPECT_EQ(feed.item(1).codePage(), 932);
    EXPECT_EQ(feed.item(2).codePage(), 932); // an unknown language changes nothing
    EXPECT_EQ(feed.channel.encoding(), u"windows-932");
    EXPECT_EQ(feed.channel.codePage(), 0);

    // A first element other than the channel gives an empty channel.
    const ParsedFeed early(
        u"<rss><title>x</title><channel><title>T</title><item/></channel></rss>");
    EXPECT_TRUE(early.parsed);
    EXPECT_EQ(early.channel.feedType(), kFeedRss);
    EXPECT_TRUE(early.channel.items().empty());
    EXPECT_TRUE(early.channel.title().isNull());
}

TEST(RdfReader, IgnoresLanguageAndReadsImageAndItemsOnlyBesideTheChannel) {
    const ParsedFeed feed(u"<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\" "
                          u"xmlns=\"http://purl.org/rss/1.0/\"><channel><title>R</title>"
                          u"<language>ja</language><image><url>http://a/in.png</url></image>"
                          u"<item><title>nested</title></item></channel>"
                          u"<image><url>http://a/out.png</url></image>"
                          u"<item qf_wasRead=\"yes\"><title>top</title><link>http://a/t</link>"
                          u"</item></rdf:RDF>");
    ASSERT_TRUE(feed.parsed);
    EXPECT_EQ(feed.channel.feedType(), kFeedRdf);
    EXPECT_EQ(feed.channel.title(), u"R");
    EXPECT_TRUE(feed.channel.encoding().isNull());
    EXPECT_EQ(feed.channel.image().url(), u"http://a/out.png");
    ASSERT_EQ(feed.channel.items().size(), 1u);
    EXPECT_EQ(feed.item(0).title(), u"top");
    EXPECT_EQ(feed.item(0).codePage(), 0);
    EXPECT_EQ(feed.channel.newItemCount(), 0);
}

TEST(FeedReader, ItemKeyIsTheFirstLinkWhileTheStoryKeepsTheLast) {
    const ParsedFeed feed(u"<rss><channel><item><guid>g</guid><link>http://a/1</link>"
                          u"<link>http://a/2</link></item><item><link> </link><guid>g</guid>"
                          u"<title>t</title></item><item><description>d</description></item>"
                          u"</channel></rss>");
    ASSERT_TRUE(feed.parsed);
    const std::vector<XmlNode> items = feed.document.ElementsByTagName(u"item");
    std::u16string key = u"stale";
    EXPECT_TRUE(ItemKey(items.at(0), key, kFeedRss));
    EXPECT_EQ(key, u"http://a/1");
    EXPECT_EQ(feed.item(0).link(), u"http://a/2");
    EXPECT_EQ(feed.item(0).key(), u"http://a/2");
    // A blank link is none: the guid stands in for it, in the key only.
    EXPECT_TRUE(ItemKey(items.at(1), key, kFeedRss));
    EXPECT_EQ(key, u"g");
    EXPECT_EQ(feed.item(1).key(), u"g");
    EXPECT_EQ(feed.item(1).link(), u" ");
    EXPECT_FALSE(ItemKey(items.at(2), key, kFeedRss));
    EXPECT_EQ(key, u"");
}

} // namespace
} // namespace qf
