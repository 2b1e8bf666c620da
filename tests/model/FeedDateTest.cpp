#include "model/FeedDate.h"

#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

SystemTime At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    FeedDate date;
    date.SetFields(year, month, day, hour, minute, second, 0);
    return date.time();
}

constexpr TimeZoneInfo kNewYorkWinter{300, -60, false};
constexpr TimeZoneInfo kNewYorkSummer{300, -60, true};
constexpr TimeZoneInfo kKolkata{-330, 0, false};

// Every test runs with a pinned clock in UTC; parsed dates read back as their RFC 822 text, or
// "empty" when the text was refused.
class FeedDateTest : public ::testing::Test {
protected:
    static std::string Parsed(std::string_view text) {
        FeedDate date;
        std::string out;
        return date.Parse(text) && date.FormatRfc822(out) ? out : "empty";
    }

    static std::string ShortLocal(const SystemTime& utc) {
        FeedDate date;
        date.SetFromSystemTime(utc);
        std::string out;
        date.FormatShortLocal(out);
        return out;
    }

    test::FakeClock clock_{At(2007, 10, 23, 12), TimeZoneInfo{}};
};

// Numeric offsets, military letters and unknown zone names count as UTC. Tokens are read by
// position only: without the day name the month lands in the day's place. Short years count from
// 2000 (so 1999 is 3999), and only 1970 to 2038 is accepted. Only the date is checked: what lies
// beyond the month's end rolls into the next. ISO texts need a capital T; a colon offset reaches
// the first attempt as tokens "2007-10-22T22", "16", "44+02", "00": day 16, unknown month, year 0.
TEST_F(FeedDateTest, TextsReadAsTheseUtcDates) {
    const std::pair<const char*, const char*> cases[] = {
        {"Mon, 22 Oct 2007 22:16:44 EST", "Tue, 23 Oct 2007 03:16:44 GMT"},
        {"mon,22 oct 2007 22:16:44 pst", "Tue, 23 Oct 2007 06:16:44 GMT"},
        {"Mon, 22 Oct 2007 22:16:44 +0200", "Mon, 22 Oct 2007 22:16:44 GMT"},
        {"Mon, 22 Oct 2007 22:16:44 A", "Mon, 22 Oct 2007 22:16:44 GMT"},
        {"22 Oct 2007 22:16:44 GMT", "empty"},
        {"  Xyz,,, 5 Mar 2008 ::7:8:9  ,GMT", "Wed, 5 Mar 2008 07:08:09 GMT"},
        {"Mon, 22 Oct 2007", "Mon, 22 Oct 2007 00:00:00 GMT"},
        {"Mon, 22 Sept 2007 10:00:00 GMT", "Mon, 22 Jan 2007 10:00:00 GMT"},
        {"Mon, 22 Oct 07 22:16:44 GMT", "Mon, 22 Oct 2007 22:16:44 GMT"},
        {"Sun, 31 Dec 1999 10:00:00 GMT", "empty"},
        {"Fri, 01 Jan 2038 00:00:00 GMT", "Fri, 1 Jan 2038 00:00:00 GMT"},
        {"Sat, 01 Jan 2039 00:00:00 GMT", "empty"},
        {"Thu, 01 Jan -30 00:00:00 GMT", "Thu, 1 Jan 1970 00:00:00 GMT"},
        {"Mon, 32 Oct 2007 10:00:00 GMT", "empty"},
        {"Wed, 31 Oct 2007 25:61:00 GMT", "Thu, 1 Nov 2007 02:01:00 GMT"},
        {"Tue, 30 Feb 2007 10:00:00 GMT", "Fri, 2 Mar 2007 10:00:00 GMT"},
        {"Tue, 30 Feb 2008 10:00:00 EST", "Sat, 1 Mar 2008 15:00:00 GMT"},
        {"2007-10-22T22:16:44Z", "Mon, 22 Oct 2007 22:16:44 GMT"},
        {"2007-10-22T22:16:44.250Z", "Mon, 22 Oct 2007 22:16:44 GMT"},
        {"2007-10-22T22:16:44-0500", "Mon, 22 Oct 2007 22:16:44 GMT"},
        {"07-10-22T22:16", "Mon, 22 Oct 2007 22:16:00 GMT"},
        {"2007-10-22t22:16:44z", "empty"},
        {"2007-10-22T22:16:44+02:00", "Sun, 16 Jan 2000 00:00:00 GMT"},
        // The first attempt finds day 20 and June but no year; the second supplies the rest.
        {"2007T10 20 Jun", "Wed, 20 Jun 2007 10:20:00 GMT"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(Parsed(text), expected) << text;
    }
    EXPECT_EQ(FeedDate::MonthNumber("dEC"), 12);
    EXPECT_EQ(FeedDate::MonthNumber("December"), 1);

    // A refused text clears a date parsed before; wide texts parse like bytes.
    FeedDate date;
    ASSERT_TRUE(date.Parse(u"Пн, 22 Oct 2007 22:16:44 EST"));
    EXPECT_EQ(date.time(), At(2007, 10, 23, 3, 16, 44));
    EXPECT_FALSE(date.Parse("22 Oct 2007 22:16:44 GMT"));
    EXPECT_EQ(date, FeedDate());
    EXPECT_FALSE(date.Parse(u"2007-10-22Ｔ22:16:44Z")); // a full-width letter is no capital T
    EXPECT_FALSE(date.Parse(std::u16string_view(u"\0Mon, 22 Oct 2007 22:16:44 GMT", 30)));
}

TEST_F(FeedDateTest, SummerZoneNamesFollowTheDevicesOwnSeason) {
    clock_.setZone(kNewYorkSummer);
    EXPECT_EQ(FeedDate::ZoneHours("EDT"), 4);
    EXPECT_EQ(FeedDate::ZoneHours("EST"), 5);
    EXPECT_EQ(Parsed("Mon, 22 Jan 2007 22:16:44 EDT"), "Tue, 23 Jan 2007 02:16:44 GMT");

    clock_.setZone(kNewYorkWinter);
    EXPECT_EQ(FeedDate::ZoneHours("edt"), 5);
    EXPECT_EQ(Parsed("Sun, 22 Jul 2007 22:16:44 EDT"), "Mon, 23 Jul 2007 03:16:44 GMT");

    clock_.setZone({-630, -30, true}); // half an hour truncates to no whole hour
    EXPECT_EQ(FeedDate::ZoneHours("CDT"), 6);
}

TEST_F(FeedDateTest, HoursCarryAcrossDaysMonthsAndYearsUpToTheEndsOfTheRange) {
    FeedDate date;
    date.SetFields(2007, 12, 31, 23, 30, 0, 0);
    date.AddHours(2);
    EXPECT_EQ(date.time(), At(2008, 1, 1, 1, 30));
    EXPECT_EQ(date.time().dayOfWeek, 2); // Tuesday
    date.AddHours(-24 * 366);
    EXPECT_EQ(date.time(), At(2006, 12, 31, 1, 30));

    // Beyond what the fields can hold, times stay at the ends of the range.
    date.SetFields(2007, 1, 1, 2'147'483'647, 0, 0, 2'147'483'647);
    EXPECT_EQ(date.time(), SystemTime({30827, 12, 5, 31, 23, 59, 59, 999}));
    date.AddHours(-9'000'000'000'000'000'000);
    EXPECT_EQ(date.time(), At(1601, 1, 1));
    EXPECT_EQ(FeedDate().Ticks(), 0);
}

TEST_F(FeedDateTest, TicksCountFrom1601AndSecondsBetweenTruncatesFirst) {
    FeedDate epoch;
    epoch.SetFields(1970, 1, 1, 0, 0, 0, 0);
    EXPECT_EQ(epoch.Ticks(), 116'444'736'000'000'000);
    SystemTime later = At(1970, 1, 2, 0, 0, 1);
    later.milliseconds = 999;
    FeedDate b;
    b.SetFromSystemTime(later);
    EXPECT_EQ(b.Ticks(), epoch.Ticks() + 86'401'999 * 10'000LL);
    EXPECT_EQ(FeedDate::SecondsBetween(b, epoch), 86'401);
}

TEST_F(FeedDateTest, LocalTimeShiftsByWholeHoursButNowLocalIsExact) {
    const SystemTime utc = At(2007, 10, 22, 22, 16, 44);
    clock_.set(utc);
    clock_.setZone(kKolkata);
    EXPECT_EQ(FeedDate::ToLocal(utc), At(2007, 10, 23, 3, 16, 44));
    EXPECT_EQ(FeedDate::NowLocal(), At(2007, 10, 23, 3, 46, 44));
    clock_.setZone(kNewYorkSummer);
    EXPECT_EQ(FeedDate::ToLocal(utc), At(2007, 10, 22, 18, 16, 44));
    EXPECT_EQ(FeedDate::NowUtc().time(), utc);
}

TEST_F(FeedDateTest, ShortLocalFormUsesTwelveHourClockAndTwoPartYears) {
    EXPECT_EQ(ShortLocal(At(2007, 10, 22, 0, 0)), "10/22/07 12:00 AM");
    EXPECT_EQ(ShortLocal(At(2007, 10, 22, 1, 5)), "10/22/07 1:05 AM");
    EXPECT_EQ(ShortLocal(At(2007, 10, 22, 12, 0)), "10/22/07 12:00 PM");
    EXPECT_EQ(ShortLocal(At(2007, 1, 2, 13, 7, 59)), "1/02/07 1:07 PM");
    EXPECT_EQ(ShortLocal(At(1999, 12, 31, 23, 59)), "12/31/99 11:59 PM");
    EXPECT_EQ(ShortLocal(At(2000, 1, 1, 10)), "1/01/100 10:00 AM");

    clock_.setZone(kNewYorkSummer);
    EXPECT_EQ(ShortLocal(At(2007, 10, 22, 22, 16, 44)), "10/22/07 6:16 PM");
    clock_.setZone(kKolkata);
    EXPECT_EQ(ShortLocal(At(2000, 12, 31, 20)), "1/01/01 1:00 AM");
}

TEST_F(FeedDateTest, FormsOfEmptyAndOddDates) {
    std::string out = "stale";
    EXPECT_FALSE(FeedDate().FormatRfc822(out));
    EXPECT_EQ(out, "");
    FeedDate date;
    date.SetFromSystemTime({2007, 13, 7, 2, 3, 4, 5, 0});
    EXPECT_EQ(date.FormatRfc822(), u"Sun, 2 Jan 2007 03:04:05 GMT");
    date.SetFields(2007, 10, 22, 22, 16, 44, 0);
    EXPECT_TRUE(date.FormatRfc822(out, 30));
    EXPECT_FALSE(date.FormatRfc822(out, 29));
    EXPECT_EQ(out, "Mon, 22 Oct 2007 22:16:44 GM");
    EXPECT_EQ(date.FormatShortLocal(9), u"10/22/07");
}

} // namespace
} // namespace qf
