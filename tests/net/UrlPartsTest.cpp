#include "net/UrlParts.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

UrlParts Cracked(std::u16string_view url, UrlParts parts = {}) {
    EXPECT_TRUE(CrackUrl(url, parts));
    return parts;
}

TEST(CrackUrl, KnownPrefixesSetTheSchemeAndItsDefaultPort) {
    const struct {
        std::u16string_view url;
        uint32_t scheme;
        uint16_t port;
    } cases[] = {{u"http://example.com/feed", kSchemeHttp, 80},
                 {u"https://example.com/feed", kSchemeHttps, 443},
                 {u"ftp://example.com/feed", kSchemeFtp, 21},
                 {u"file://example.com/feed", kSchemeFile, 0}};
    for (const auto& c : cases) {
        const UrlParts parts = Cracked(c.url, {kSchemeHttp, u"old", u"old", 1234});
        EXPECT_EQ(parts.scheme, c.scheme);
        EXPECT_EQ(parts.port, c.port);
        EXPECT_EQ(parts.host, u"example.com");
        EXPECT_EQ(parts.path, u"feed");
    }
}

TEST(CrackUrl, HostKeepsItsPortNumberReadAfterTheLastColonAndAnUnknownPrefixKeepsTheScheme) {
    const UrlParts parts = Cracked(u"http://example.com:8080/news/feed.xml?x=1");
    EXPECT_EQ(parts.host, u"example.com:8080");
    EXPECT_EQ(parts.port, 8080);
    EXPECT_EQ(parts.path, u"news/feed.xml?x=1");
    const UrlParts noSlash = Cracked(u"https://example.com");
    EXPECT_EQ(noSlash.host, u"example.com");
    EXPECT_EQ(noSlash.path, u"");
    // The port is read after the last colon, even one in the path.
    EXPECT_EQ(Cracked(u"http://example.com/feed:rss").port, 0);
    EXPECT_EQ(Cracked(u"http://example.com:8080/feed:rss").port, 0);
    EXPECT_EQ(Cracked(u"http://example.com/at?time=10:30").port, 30);
    // Too large for a port: only the low 16 bits remain.
    EXPECT_EQ(Cracked(u"http://example.com:65616/").port, 80);

    const UrlParts fresh = Cracked(u"example.com/feed");
    EXPECT_EQ(fresh.scheme, kSchemeHttp);
    EXPECT_EQ(fresh.port, 80);
    EXPECT_EQ(fresh.host, u"example.com");

    const UrlParts afterHttps = Cracked(u"example.com/feed", Cracked(u"https://other.org/"));
    EXPECT_EQ(afterHttps.scheme, kSchemeHttps);
    EXPECT_EQ(afterHttps.port, 443);

    // Prefixes are case-sensitive, so this one is no prefix at all.
    const UrlParts upper = Cracked(u"HTTP://example.com/feed");
    EXPECT_EQ(upper.scheme, kSchemeHttp);
    EXPECT_EQ(upper.host, u"HTTP:");
    EXPECT_EQ(upper.path, u"/example.com/feed");
    EXPECT_EQ(upper.port, 0);
}

} // namespace
} // namespace qf
