#include "parse/AtomReader.h"

#include "parse/FeedType.h"
#include "support/ParsedFeed.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

using test::ParsedFeed;

constexpr std::u16string_view kFeedStart = u"<feed xmlns=\"http://www.w3.org/2005/Atom\">";

std::u16string Feed(std::u16string_view body) {
    return std::u16string(kFeedStart) + std::u16string(body) + u"</feed>";
}

TEST(AtomReader, EntryLinkComesOnlyFromTextHtmlLinksAndTheLastOneWins) {
    const ParsedFeed feed(Feed(u"<entry><link rel=\"alternate\" href=\"http://a/untyped\"/></entry>"
                               u"<entry><link type=\"TEXT/HTML\" href=\"http://a/caps\"/>"
                               u"<link type=\"application/pdf\" href=\"http://a/pdf\"/></entry>"
                               u"<entry><link type=\"text/html\" href=\"http://a/1\"/>"
                               u"<link type=\"text/html\" href=\"http://a/2\"/></entry>"));
    ASSERT_TRUE(feed.parsed);
    EXPECT_TRUE(feed.item(0).link().isNull());
    EXPECT_EQ(feed.item(1).link(), u"http://a/caps");
    EXPECT_EQ(feed.item(2).link(), u"http://a/2");

    const std::vector<XmlNode> entries = feed.document.ElementsByTagName(u"entry");
    std::u16string key;
    EXPECT_FALSE(ItemKey(entries.at(0), key, kFeedAtom));
    EXPECT_TRUE(ItemKey(entries.at(1), key, kFeedAtom));
    EXPECT_EQ(key, u"http://a/caps");
    EXPECT_TRUE(ItemKey(entries.at(2), key, kFeedAtom));
    EXPECT_EQ(key, u"http://a/1");
}

TEST(AtomReader, ReadsFeedDateIconAndEntryFieldsButALogoAloneIsNoImage) {
    const ParsedFeed feed(Feed(u"<title>Atom</title><updated>2007-10-22T22:16:44Z</updated>"
                               u"<logo>http://a/logo.png</logo><icon>http://a/i.ico</icon>"
                               u"<entry qf_wasRead=\"Yes\"><title>E</title><id>urn:1</id>"
                               u"<updated>2000-01-16T10:16:00+02:00</updated><summary>s</summary>"
                               u"<content type=\"html\">&lt;b&gt;x&lt;/b&gt;</content></entry>"
                               u"<entry><content type=\"xhtml\"><div>inline</div></content></entry>"
                               u"<entry><summary>only</summary></entry>"),
                          false, 3);
    ASSERT_TRUE(feed.parsed);
    const Channel& channel = feed.channel;
    EXPECT_EQ(channel.feedType(), kFeedAtom);
    EXPECT_TRUE(channel.title().isNull());
    EXPECT_EQ(channel.lastBuildDate().FormatRfc822(), u"Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_EQ(channel.image().url(), u"http://a/i.ico");
    EXPECT_EQ(channel.image().localFile(), u"Image3.ico");
    EXPECT_EQ(feed.item(0).title(), u"E");
    EXPECT_EQ(feed.item(0).guid(), u"urn:1");
    EXPECT_TRUE(feed.item(0).isRead());
    EXPECT_EQ(feed.item(0).date().time().day, 16);
    EXPECT_EQ(feed.item(0).description(), u"<b>x</b>");
    EXPECT_EQ(feed.item(1).description(), u"");
    EXPECT_TRUE(feed.item(2).description().isNull());
    EXPECT_EQ(channel.newItemCount(), 2);

    const ParsedFeed logo(Feed(u"<title>T</title><logo>http://a/logo.png</logo>"));
    ASSERT_TRUE(logo.parsed);
    EXPECT_EQ(logo.channel.title(), u"T");
    EXPECT_TRUE(logo.channel.image().url().isNull());
    EXPECT_TRUE(logo.channel.image().localFile().isNull());
}

} // namespace
} // namespace qf
