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

TEST(BoundedText, CopyKeepsCapacityUnitsAndAppendKeepsRoomForTerminator) {
    EXPECT_EQ(BoundedCopy(u"abc", 4), u"abc");
    EXPECT_EQ(BoundedCopy(u"abcd", 4), u"abcd");
    EXPECT_EQ(BoundedCopy(u"abcdef", 4), u"abcd");

    std::u16string text = u"ab";
    BoundedAppend(text, u"cdef", 5);
    EXPECT_EQ(text, u"abcd");
    BoundedAppend(text, u"x", 5);
    EXPECT_EQ(text, u"abcd");
}

TEST(LeadingDecimal, ReadsLeadingDigitsOnly) {
    EXPECT_EQ(LeadingDecimal(u"42abc"), 42);
    EXPECT_EQ(LeadingDecimal(u"  -7"), -7);
    EXPECT_EQ(LeadingDecimal(u"+12"), 12);
    EXPECT_EQ(LeadingDecimal(u"yes"), 0);
    EXPECT_EQ(LeadingDecimal(u""), 0);
    EXPECT_EQ(LeadingDecimal(u"99999999999"), 2147483647);
    EXPECT_EQ(LeadingDecimal(u"-99999999999"), -2147483647 - 1);
}

TEST(EqualsIgnoreCase, FoldsLatinCyrillicAndGreekLetters) {
    EXPECT_TRUE(EqualsIgnoreCase(u"RSS", u"rss"));
    EXPECT_TRUE(EqualsIgnoreCase(u"НОВОСТИ", u"новости"));
    EXPECT_TRUE(EqualsIgnoreCase(u"Ёж", u"ёж"));
    EXPECT_TRUE(EqualsIgnoreCase(u"ÉCOLE Ł", u"école ł"));
    EXPECT_TRUE(EqualsIgnoreCase(u"ΕΙΔΗΣΕΙΣ", u"ειδησεισ"));
    EXPECT_FALSE(EqualsIgnoreCase(u"rss", u"rdf"));
    EXPECT_FALSE(EqualsIgnoreCase(u"rss", u"rss "));
    EXPECT_FALSE(EqualsIgnoreCase(u"×", u"÷"));
}

TEST(Utf8, RoundTripsAndReplacesBrokenInput) {
    const std::u16string text = u"Zürich 東京 \U0001F600";
    EXPECT_EQ(Utf8ToUtf16(Utf16ToUtf8(text)), text);
    EXPECT_EQ(Utf8ToUtf16("a\xff"
                          "b"),
              u"a\uFFFDb");
    EXPECT_EQ(Utf8ToUtf16("\xe6\x9d"), u"\uFFFD\uFFFD");
}

} // namespace
} // namespace qf
