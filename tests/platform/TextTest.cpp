#include "platform/Text.h"

#include "platform/WString.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

TEST(WString, NullDiffersFromEmptyAndNullSourceChangesNothing) {
    WString text;
    EXPECT_TRUE(text.isNull());
    text.set(WString(u""));
    EXPECT_FALSE(text.isNull());
    EXPECT_TRUE(text.empty());

    text.set(u"kept");
    text.set(WString());
    EXPECT_EQ(text, u"kept");
    EXPECT_NE(WString(), WString(u""));
}

TEST(BoundedText, CopyKeepsCapacityUnitsAppendKeepsRoomForTerminatorAndDecimalsAreLeading) {
    EXPECT_EQ(BoundedCopy(u"abc", 4), u"abc");
    EXPECT_EQ(BoundedCopy(u"abcd", 4), u"abcd");
    EXPECT_EQ(BoundedCopy(u"abcdef", 4), u"abcd");

    std::u16string text = u"ab";
    BoundedAppend(text, u"cdef", 5);
    EXPECT_EQ(text, u"abcd");
    BoundedAppend(text, u"x", 5);
    EXPECT_EQ(text, u"abcd");

    EXPECT_EQ(LeadingDecimal(u"42abc"), 42);
    EXPECT_EQ(LeadingDecimal(u"  -7"), -7);
    EXPECT_EQ(LeadingDecimal(u"+12"), 12);
    EXPECT_EQ(LeadingDecimal(u"yes"), 0);
    EXPECT_EQ(LeadingDecimal(u""), 0);
    EXPECT_EQ(LeadingDecimal(u"99999999999"), 2147483647);
    EXPECT_EQ(LeadingDecimal(u"-99999999999"), -2147483647 - 1);
}

TEST(EqualsIgnoreCase, FoldsLettersOfTextButOnlyAsciiLettersOfBytes) {
    EXPECT_TRUE(EqualsIgnoreCase(u"RSS", u"rss"));
    EXPECT_TRUE(EqualsIgnoreCase(u"НОВОСТИ", u"новости"));
    EXPECT_TRUE(EqualsIgnoreCase(u"Ёж", u"ёж"));
    EXPECT_TRUE(EqualsIgnoreCase(u"ÉCOLE Ł", u"école ł"));
    EXPECT_TRUE(EqualsIgnoreCase(u"ΕΙΔΗΣΕΙΣ", u"ειδησεισ"));
    EXPECT_FALSE(EqualsIgnoreCase(u"rss", u"rdf"));
    EXPECT_FALSE(EqualsIgnoreCase(u"rss", u"rss "));
    EXPECT_FALSE(EqualsIgnoreCase(u"×", u"÷"));

    EXPECT_TRUE(EqualsIgnoreCase("Content-LENGTH", "content-length"));
    EXPECT_FALSE(EqualsIgnoreCase("\xc3\x89", "\xc3\xa9")); // É and é as UTF-8
    EXPECT_FALSE(EqualsIgnoreCase("utf-8", "utf8"));
}

// Every byte that does not start a well-formed shortest sequence becomes one U+FFFD, and
// decoding carries on with the next byte. ASCII runs longer than a block of the fast copy, and
// a block broken by a character beyond ASCII, decode like any other text.
TEST(Utf8, DecodesWellFormedTextAndReplacesEachBrokenByte) {
    const struct {
        std::string_view utf8;
        std::u16string_view utf16;
    } kCases[] = {
        {"Z\xc3\xbcrich \xe6\x9d\xb1 \xf0\x9f\x98\x80", u"Zürich 東 \U0001F600"},
        {"\xf4\x8f\xbf\xbf", u"\U0010FFFF"},
        {"a\xff"
         "b",
         u"a\uFFFDb"},
        {"\xe6\x9d", u"\uFFFD\uFFFD"},
        {"\xe6\x9d"
         "x",
         u"\uFFFD\uFFFDx"},
        {"\xc0\xaf", u"\uFFFD\uFFFD"},                     // overlong "/"
        {"\xe0\x80\xaf", u"\uFFFD\uFFFD\uFFFD"},           // overlong "/"
        {"\xed\xa0\x80", u"\uFFFD\uFFFD\uFFFD"},           // a surrogate
        {"\xf4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // beyond U+10FFFF
        {"\xf8\x88\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // no such lead byte
        {"0123456789abcdef\xc3\xa9", u"0123456789abcdefé"},
        {"0123456\xc3\xa9"
         "0123456789",
         u"0123456é0123456789"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(Utf8ToUtf16(c.utf8), c.utf16) << c.utf8;
    }
    const std::u16string text = u"Zürich 東京 \U0001F600";
    EXPECT_EQ(Utf8ToUtf16(Utf16ToUtf8(text)), text);
}

TEST(Utf8, EncodesUnpairedSurrogatesAndForXmlAlsoWhatXmlCannotHold) {
    const std::u16string text = std::u16string(u"a\t\n\r") + char16_t(0) + u"\a\x7f" +
                                char16_t(0xD800) + u"\U0001F600" + char16_t(0xDC00) +
                                u"\uFFFE\uFFFF";
    EXPECT_EQ(Utf16ToUtf8(text),
              std::string("a\t\n\r\0\a\x7f", 7) +
                  "\xef\xbf\xbd\xf0\x9f\x98\x80\xef\xbf\xbd\xef\xbf\xbe\xef\xbf\xbf");
    std::string xml = "kept ";
    AppendUtf8(xml, text, Utf8Use::kXml);
    EXPECT_EQ(xml, "kept a\t\n\r\xef\xbf\xbd\xef\xbf\xbd\x7f\xef\xbf\xbd\xf0\x9f\x98\x80"
                   "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
}

} // namespace
} // namespace qf
