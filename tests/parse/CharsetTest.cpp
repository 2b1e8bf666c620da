#include "parse/Charset.h"

#include "parse/FeedType.h"
#include "platform/CodePage.h"
#include "support/TestEnv.h"

#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace qf {
namespace {

using namespace std::string_literals;

constexpr const char* kDefaultVariable = "QUILLFEED_CODEPAGE";

TEST(DetectFeedType, ComparesTheWholeRootNameIgnoringCase) {
    EXPECT_EQ(DetectFeedType(u"RSS"), kFeedRss);
    EXPECT_EQ(DetectFeedType(u"Rss"), kFeedRss);
    EXPECT_EQ(DetectFeedType(u"rdf:rdf"), kFeedRdf);
    EXPECT_EQ(DetectFeedType(u"Feed"), kFeedAtom);
    for (const char16_t* other : {u"atom:feed", u"RDF", u"opml", u"rss ", u""}) {
        EXPECT_EQ(DetectFeedType(other), kFeedUnknown) << WString(other).toUtf8();
    }
}

// Russian accepts a region only after a lower-case "ru"; the Asian languages match only when
// written bare. A miss clears both answers.
TEST(LanguageToCodePage, RussianTakesARegionAndAsianLanguagesMatchOnlyBare) {
    const struct {
        const char16_t* language;
        int32_t codePage;
        const char16_t* charsetName;
    } cases[] = {{u"ru", 1251, u"windows-1251"},    {u"RU", 1251, u"windows-1251"},
                 {u"ru-RU", 1251, u"windows-1251"}, {u"ru-ua", 1251, u"windows-1251"},
                 {u"zh-CN", 936, u"windows-936"},   {u"ZH-TW", 950, u"windows-950"},
                 {u"Ja", 932, u"windows-932"},      {u"ko", 949, u"windows-949"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(WString(c.language).toUtf8());
        int32_t codePage = -1;
        std::u16string charsetName = u"stale";
        EXPECT_TRUE(LanguageToCodePage(WString(c.language), codePage, charsetName));
        EXPECT_EQ(codePage, c.codePage);
        EXPECT_EQ(charsetName, c.charsetName);
    }
    for (const char16_t* other :
         {u"RU-ru", u"Ru-RU", u"ru_RU", u"rus", u"ja-jp", u"ko-KR", u"zh", u"en", u""}) {
        SCOPED_TRACE(WString(other).toUtf8());
        int32_t codePage = -1;
        std::u16string charsetName = u"stale";
        EXPECT_FALSE(LanguageToCodePage(WString(other), codePage, charsetName));
        EXPECT_EQ(codePage, 0);
        EXPECT_EQ(charsetName, u"");
    }
    int32_t codePage = -1;
    std::u16string charsetName;
    EXPECT_FALSE(LanguageToCodePage(WString(), codePage, charsetName));
}

// Windows names give their leading number, ISO names need part 8859 and a known part, and
// other families and missing names give zero.
TEST(CharsetToCodePage, WindowsAndKnownIsoNamesGiveACodePageAndOthersZero) {
    const std::pair<const char16_t*, int32_t> cases[] = {
        {u"windows-1251", 1251}, {u"WINDOWS-874", 874}, {u"windows-1252x", 1252},
        {u"iso-8859-1", 1252},   {u"ISO-8859-5", 1251}, {u"iso-8859-15", 1252},
        {u"iso-8859-2", 1250},   {u"iso-8859-9", 1254}};
    for (const auto& [name, codePage] : cases) {
        EXPECT_EQ(CharsetToCodePage(WString(name)), codePage) << WString(name).toUtf8();
    }
    for (const char16_t* name :
         {u"windows-0", u"windows-", u"windows", u"windows-x1252", u"iso-8859-10", u"iso-8859",
          u"iso8859-1", u"iso-2022-jp", u"utf-8", u"UTF-16", u"koi8-r", u"euc-jp", u"us-ascii",
          u"big5", u"shift_jis", u""}) {
        EXPECT_EQ(CharsetToCodePage(WString(name)), 0) << WString(name).toUtf8();
    }
    EXPECT_EQ(CharsetToCodePage(WString()), 0);
}

// Every conversion test pins the default character set, whatever the environment running it.
class CodePageConversion : public ::testing::Test {
protected:
    test::EnvVar defaultCharset_{kDefaultVariable, std::nullopt};
};

TEST_F(CodePageConversion, EachMappedCodePageConvertsBothWaysShortAndLongTexts) {
    const struct {
        int32_t codePage;
        std::u16string text;
        std::string bytes;
    } samples[] = {
        {874, u"ก", "\xa1"},      {932, u"日本", "\x93\xfa\x96\x7b"},
        {936, u"中", "\xd6\xd0"}, {949, u"한", "\xc7\xd1"},
        {950, u"中", "\xa4\xa4"}, {1250, u"ł", "\xb3"},
        {1251, u"Ж", "\xc6"},     {1252, u"é€", "\xe9\x80"},
        {1253, u"Ω", "\xd9"},     {1254, u"ş", "\xfe"},
        {1255, u"א", "\xe0"},     {1256, u"ع", "\xda"},
        {1257, u"ą", "\xe0"},     {1258, u"₫", "\xfe"},
    };
    for (const auto& sample : samples) {
        EXPECT_EQ(WideToBytes(sample.text, sample.codePage), sample.bytes) << sample.codePage;
        EXPECT_EQ(BytesToWide(sample.bytes, sample.codePage), sample.text) << sample.codePage;
    }
    EXPECT_EQ(BytesToWide("ASCII \\~", 932), u"ASCII \\~");
    EXPECT_EQ(BytesToWide("caf\xc3\xa9 \xf0\x9f\x98\x80", 0), u"café \U0001F600");
    std::u16string russian;
    std::u16string japanese;
    for (int i = 0; i < 5000; ++i) {
        russian += u"Ёлка ";
        japanese += u"東京の天気 ";
    }
    EXPECT_EQ(BytesToWide(WideToBytes(russian, 1251), 1251), russian);
    EXPECT_EQ(BytesToWide(WideToBytes(japanese, 932), 932), japanese);
    EXPECT_EQ(BytesToWide(WideToBytes(japanese, 0), 0), japanese);
}

TEST_F(CodePageConversion, WhatCannotConvertIsReplacedAndConversionGoesOn) {
    EXPECT_EQ(BytesToWide("a\xff-\xa0-", 932), u"a\uFFFD-\uFFFD-");
    EXPECT_EQ(BytesToWide("\x93\xfa\x93", 932), u"日\uFFFD");
    EXPECT_EQ(BytesToWide("x\x98y", 1251), u"x\uFFFDy");
    // The Hebrew code page holds a letter back in case a vowel mark follows it.
    EXPECT_EQ(BytesToWide("\xe0\xff\xe1", 1255), u"א\uFFFDב");
    EXPECT_EQ(BytesToWide("a\xc3(b\xe6\x9d", 0), u"a\uFFFD(b\uFFFD\uFFFD");

    // Unmappable characters and lone surrogates become question marks.
    EXPECT_EQ(WideToBytes(u"Ж日ы", 1251), "\xc6?\xfb");
    EXPECT_EQ(WideToBytes(u"a\U0001F600b", 1252), "a?b");
    EXPECT_EQ(WideToBytes(u"a\xD800-\xDC00-\xD800", 1251), "a?-?-?");
    EXPECT_EQ(WideToBytes(u"\xDC00\xD800", 932), "??");
    EXPECT_EQ(WideToBytes(u"日\xD800", 0), "\xe6\x97\xa5\xef\xbf\xbd");
}

// Text ends at the first NUL, and limits keep room for a terminator.
TEST_F(CodePageConversion, TextEndsAtTheFirstNulOrTheLimitAndNeverSplitsACharacter) {
    EXPECT_EQ(BytesToWide("abc\0def"s, 1251), u"abc");
    EXPECT_EQ(BytesToWide("\xcf\0\xcf"s, 1251), u"П");
    EXPECT_EQ(WideToBytes(u"Ж\0Ж"s, 1251), "\xc6");
    EXPECT_EQ(BytesToWide("abcdef", 0, 4), u"abc");
    EXPECT_EQ(BytesToWide("\xcf\xf0\xe8\xe2", 1251, 3), u"Пр");
    EXPECT_EQ(BytesToWide("a\xf0\x9f\x98\x80", 0, 3), u"a");
    EXPECT_EQ(BytesToWide("\x93\xfa\x96\x7b", 932, 2), u"日");

    EXPECT_EQ(WideToBytes(u"日本", 932, 4), "\x93\xfa");
    EXPECT_EQ(WideToBytes(u"日本", 0, 6), "\xe6\x97\xa5");
    EXPECT_EQ(WideToBytes(u"Жы", 1251, 2), "\xc6");
    EXPECT_EQ(WideToBytes(u"abc", 1251, 3), "ab");
}

// Unknown code pages fall back to the default character set.
TEST_F(CodePageConversion, DefaultCharacterSetFollowsTheEnvironment) {
    for (int32_t codePage : {0, 1, 12345, -1252}) {
        EXPECT_EQ(BytesToWide("caf\xc3\xa9", codePage), u"café") << codePage;
        EXPECT_EQ(WideToBytes(u"café", codePage), "caf\xc3\xa9") << codePage;
    }
    EXPECT_EQ(BytesToWide("caf\xc3\xa9", 65001), u"café");
    {
        test::EnvVar russian(kDefaultVariable, "1251");
        EXPECT_FALSE(DefaultCharsetIsUtf8());
        EXPECT_EQ(BytesToWide("\xcf", 0), u"П");
        EXPECT_EQ(BytesToWide("\xcf", 99999), u"П");
        EXPECT_EQ(WideToBytes(u"П", 0), "\xcf");
        EXPECT_EQ(BytesToWide("\xc3\xa9", 65001), u"é");
    }
    {
        test::EnvVar koi8(kDefaultVariable, "KOI8-R");
        EXPECT_EQ(BytesToWide("\xf0", 0), u"П");
        EXPECT_EQ(BytesToWide("\xcf", 1251), u"П");
    }
    for (const char* unusable : {"no-such-charset", "0", "", "65001", "utf8"}) {
        test::EnvVar fallback(kDefaultVariable, unusable);
        EXPECT_TRUE(DefaultCharsetIsUtf8()) << unusable;
        EXPECT_EQ(BytesToWide("\xc3\xa9", 0), u"é") << unusable;
    }
    EXPECT_EQ(BytesToWide("\xc3\xa9", 0), u"é");
}

} // namespace
} // namespace qf
