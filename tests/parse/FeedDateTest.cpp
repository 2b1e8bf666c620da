#include "parse/FeedDate.h"

#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

SystemTime At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    FeedDate date;
    date.SetFields(year, month, day, hour, minute, second, 0);
    return date.time();
}

constexpr TimeZoneInfo kUtcZone{};
constexpr TimeZoneInfo kNewYorkWinter{300, -60, false};
constexpr TimeZoneInfo kNewYorkSummer{300, -60, true};
constexpr TimeZoneInfo kKolkata{-330, 0, false};

// Every test runs with a pinned clock; dates read back as their RFC 822 text in UTC, or
// "empty" when the text was refused.
class FeedDateTest : public ::testing::Test {
protected:
    static std::string Parsed(std::string_view text) {
        FeedDate date;
        const bool ok = date.Parse(text);
        EXPECT_EQ(ok, date.valid());
        std::string out;
        return date.FormatRfc822(out) ? out : "empty";
    }

    static std::string ShortLocal(const SystemTime& utc) {
        FeedDate date;
        date.SetFromSystemTime(utc);
        std::string out;
        date.FormatShortLocal(out);
        return out;
    }

    test::FakeClock clock_{At(2007, 10, 23, 12), kUtcZone};
};

TEST_F(FeedDateTest, Rfc822ZoneNamesAreAddedToReachUtc) {
    EXPECT_EQ(Parsed("Mon, 22 Oct 2007 22:16:44 EST"), "Tue, 23 Oct 2007 03:16:44 GMT");
    EXPECT_EQ(Parsed("Mon, 22 Oct 2007 22:16:44 GMT"), "Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_EQ(Parsed("mon,22 oct 2007 22:16:44 pst"), "Tue, 23 Oct 2007 06:16:44 GMT");
    EXPECT_EQ(Parsed("Mon, 22 Oct 2007 22:16:44 cst"), "Tue, 23 Oct 2007 04:16:44 GMT");
    EXPECT_EQ(Parsed("Mon, 22 Oct 2007 22:16:44 MST"), "Tue, 23 Oct 2007 05:16:44 GMT");
    // Numeric offsets, military letters and unknown names all count as UTC.
    EXPECT_EQ(Parsed("Mon, 22 Oct 2007 22:16:44 +0200"), "Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_EQ(Parsed("Mon, 22 Oct 2007 22:16:44 -0500"), "Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_EQ(Parsed("Mon, 22 Oct 2007 22:16:44 A"), "Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_EQ(Parsed("Mon, 22 Oct 2007 22:16:44 UT"), "Mon, 22 Oct 2007 22:16:44 GMT");
}

TEST_F(FeedDateTest, Rfc822TokensAreReadByPositionOnly) {
    // Without the day name the month lands in the day's place; no capital T, so no second try.
    EXPECT_EQ(Parsed("22 Oct 2007 22:16:44 GMT"), "empty");
    // Any day name will do, and runs of separators count as one.
    EXPECT_EQ(Parsed("  Xyz,,, 5 Mar 2008 ::7:8:9  ,GMT"), "Wed, 5 Mar 2008 07:08:09 GMT");
    EXPECT_EQ(Parsed("Mon, 22 Sept 2007 10:00:00 GMT"), "Mon, 22 Jan 2007 10:00:00 GMT");
    EXPECT_EQ(Parsed("Mon, 22 Oct 2007"), "Mon, 22 Oct 2007 00:00:00 GMT");
    EXPECT_EQ(Parsed("Mon, 22 Oct 2007 22:16:44 EST trailing words"),
              "Tue, 23 Oct 2007 03:16:44 GMT");
    EXPECT_EQ(Parsed(""), "empty");
    EXPECT_EQ(Parsed("yesterday"), "empty");
}

TEST_F(FeedDateTest, ShortYearsCountFrom2000AndOnly1970To2038IsAccepted) {
    EXPECT_EQ(Parsed("Mon, 22 Oct 07 22:16:44 GMT"), "Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_EQ(Parsed("Sun, 31 Dec 1999 10:00:00 GMT"), "empty"); // read as 3999
    EXPECT_EQ(Parsed("Fri, 01 Jan 2038 00:00:00 GMT"), "Fri, 1 Jan 2038 00:00:00 GMT");
    EXPECT_EQ(Parsed("Sat, 01 Jan 2039 00:00:00 GMT"), "empty");
    EXPECT_EQ(Parsed("Thu, 01 Jan -30 00:00:00 GMT"), "Thu, 1 Jan 1970 00:00:00 GMT");
    EXPECT_EQ(Parsed("Wed, 31 Dec -31 00:00:00 GMT"), "empty");
    EXPECT_EQ(Parsed("Mon, 0 Oct 2007 10:00:00 GMT"), "empty");
    EXPECT_EQ(Parsed("Mon, 32 Oct 2007 10:00:00 GMT"), "empty");
    // Only the date is checked; a late hour rolls into the next day.
    EXPECT_EQ(Parsed("Mon, 31 Oct 2007 25:61:00 GMT"), "Thu, 1 Nov 2007 02:01:00 GMT");
}

TEST_F(FeedDateTest, ThirtyFebruaryRollsIntoMarch) {
    EXPECT_EQ(Parsed("Tue, 30 Feb 2007 10:00:00 GMT"), "Fri, 2 Mar 2007 10:00:00 GMT");
    EXPECT_EQ(Parsed("Tue, 30 Feb 2008 10:00:00 GMT"), "Sat, 1 Mar 2008 10:00:00 GMT");
    EXPECT_EQ(Parsed("Tue, 29 Feb 2000 10:00:00 GMT"), "Tue, 29 Feb 2000 10:00:00 GMT");
    EXPECT_EQ(Parsed("Tue, 31 Apr 2007 10:00:00 EST"), "Tue, 1 May 2007 15:00:00 GMT");
}

TEST_F(FeedDateTest, IsoTextsNeedCapitalTAndTakeFractionsAsTheZone) {
    EXPECT_EQ(Parsed("2007-10-22T22:16:44Z"), "Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_EQ(Parsed("  2007-10-22T22:16:44"), "Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_EQ(Parsed("2007-10-22T22:16:44.250Z"), "Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_EQ(Parsed("2007-10-22T22:16:44-0500"), "Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_EQ(Parsed("07-10-22T22:16Z"), "Mon, 22 Oct 2007 22:16:00 GMT");
    EXPECT_EQ(Parsed("2007-10-22t22:16:44z"), "empty");
    EXPECT_EQ(Parsed("2007-10-22"), "empty");
    EXPECT_EQ(Parsed("1999-10-22T22:16:44Z"), "empty");
}

TEST_F(FeedDateTest, IsoTextWithColonOffsetIsTakenByTheFirstAttempt) {
    // Tokens "2007-10-22T22", "16", "44+02", "00": day 16, unknown month, year 00.
    EXPECT_EQ(Parsed("2007-10-22T22:16:44+02:00"), "Sun, 16 Jan 2000 00:00:00 GMT");
    EXPECT_EQ(Parsed("2007-10-22T22:16:44-05:00"), "Sun, 16 Jan 2000 00:00:00 GMT");
}

TEST_F(FeedDateTest, SecondAttemptKeepsWhatTheFirstOneFound) {
    // The first attempt refuses year 3999 but keeps day 22 and October; the T of "Tue" starts a
    // date part with no digits, so those stay and the time comes from the rest of the text.
    EXPECT_EQ(Parsed("Tue, 22 Oct 1999 22:16:44 EST"), "empty");
    // Here the first attempt finds day 20 and June but no year; the second supplies the year and
    // the hour and minute, and the day and month stay.
    EXPECT_EQ(Parsed("2007T10 20 Jun"), "Wed, 20 Jun 2007 10:20:00 GMT");
}

TEST_F(FeedDateTest, FailedParseClearsAnEarlierDate) {
    FeedDate date;
    ASSERT_TRUE(date.Parse("Mon, 22 Oct 2007 22:16:44 GMT"));
    EXPECT_FALSE(date.Parse("22 Oct 2007 22:16:44 GMT"));
    EXPECT_EQ(date, FeedDate());
}

TEST_F(FeedDateTest, SummerZoneNamesFollowTheDevicesOwnSeason) {
    clock_.setZone(kNewYorkSummer);
    EXPECT_EQ(FeedDate::ZoneHours("EDT"), 4);
    EXPECT_EQ(FeedDate::ZoneHours("pdt"), 7);
    EXPECT_EQ(FeedDate::ZoneHours("EST"), 5);
    EXPECT_EQ(Parsed("Mon, 22 Jan 2007 22:16:44 EDT"), "Tue, 23 Jan 2007 02:16:44 GMT");

    clock_.setZone(kNewYorkWinter);
    EXPECT_EQ(FeedDate::ZoneHours("EDT"), 5);
    EXPECT_EQ(FeedDate::ZoneHours("MDT"), 7);
    EXPECT_EQ(Parsed("Mon, 22 Jul 2007 22:16:44 EDT"), "Mon, 23 Jul 2007 03:16:44 GMT");

    // A half-hour daylight bias truncates to no whole hour.
    clock_.setZone({-630, -30, true});
    EXPECT_EQ(FeedDate::ZoneHours("CDT"), 6);
}

TEST_F(FeedDateTest, UnknownMonthNameIsJanuary) {
    EXPECT_EQ(FeedDate::MonthNumber("dec"), 12);
    EXPECT_EQ(FeedDate::MonthNumber("MAY"), 5);
    EXPECT_EQ(FeedDate::MonthNumber("December"), 1);
    EXPECT_EQ(FeedDate::MonthNumber(""), 1);
}

TEST_F(FeedDateTest, HoursCarryAcrossDaysMonthsAndYears) {
    FeedDate date;
    date.SetFields(2007, 12, 31, 23, 30, 0, 0);
    date.AddHours(2);
    EXPECT_EQ(date.time(), At(2008, 1, 1, 1, 30));
    EXPECT_EQ(date.time().dayOfWeek, 2); // Tuesday
    date.AddHours(-24 * 366);
    EXPECT_EQ(date.time(), At(2006, 12, 31, 1, 30));

    date.SetFields(2008, 3, 1, 1, 0, 0, -3); // three hours ahead of UTC
    EXPECT_EQ(date.time(), At(2008, 2, 29, 22));
    EXPECT_TRUE(date.valid());
}

TEST_F(FeedDateTest, TicksCountFrom1601AndSecondsBetweenTruncatesFirst) {
    FeedDate start;
    start.SetFields(1601, 1, 1, 0, 0, 0, 0);
    EXPECT_EQ(start.Ticks(), 0);
    EXPECT_EQ(start.time().dayOfWeek, 1); // Monday
    FeedDate unixEpoch;
    unixEpoch.SetFields(1970, 1, 1, 0, 0, 0, 0);
    EXPECT_EQ(unixEpoch.Ticks(), 116'444'736'000'000'000);

    SystemTime later = At(1970, 1, 2, 0, 0, 1);
    later.milliseconds = 999;
    FeedDate b;
    b.SetFromSystemTime(later);
    EXPECT_EQ(b.Ticks(), 116'444'736'000'000'000 + 86'401'999 * 10'000LL);
    EXPECT_EQ(FeedDate::SecondsBetween(b, unixEpoch), 86'401);
    EXPECT_EQ(FeedDate::SecondsBetween(unixEpoch, b), -86'401);
}

TEST_F(FeedDateTest, ExtremeFieldsAreHeldAtTheEndsOfTheRange) {
    FeedDate date;
    date.SetFields(2007, 1, 1, 2'147'483'647, 0, 0, 2'147'483'647);
    EXPECT_EQ(date.time(), SystemTime({30827, 12, 5, 31, 23, 59, 59, 999}));
    date.AddHours(-9'000'000'000'000'000'000);
    EXPECT_EQ(date.Ticks(), 0);
    EXPECT_EQ(FeedDate().Ticks(), 0);
}

TEST_F(FeedDateTest, LocalTimeShiftsByWholeHoursOnly) {
    const SystemTime utc = At(2007, 10, 22, 22, 16, 44);
    clock_.setZone(kKolkata);
    EXPECT_EQ(FeedDate::ToLocal(utc), At(2007, 10, 23, 3, 16, 44));
    clock_.setZone(kNewYorkSummer);
    EXPECT_EQ(FeedDate::ToLocal(utc), At(2007, 10, 22, 18, 16, 44));
    clock_.setZone(kNewYorkWinter);
    EXPECT_EQ(FeedDate::ToLocal(utc), At(2007, 10, 22, 17, 16, 44));
}

TEST_F(FeedDateTest, NowComesFromTheClock) {
    clock_.set(At(2007, 10, 22, 22, 16, 44));
    EXPECT_EQ(FeedDate::NowUtc().time(), At(2007, 10, 22, 22, 16, 44));
    EXPECT_TRUE(FeedDate::NowUtc().valid());
    clock_.setZone(kKolkata);
    EXPECT_EQ(FeedDate::NowLocal(), At(2007, 10, 23, 3, 46, 44));
    clock_.setZone(kNewYorkSummer);
    EXPECT_EQ(FeedDate::NowLocal(), At(2007, 10, 22, 18, 16, 44));
}

TEST_F(FeedDateTest, ShortLocalFormUsesTwelveHourClock) {
    EXPECT_EQ(ShortLocal(At(2007, 10, 22, 0, 0)), "10/22/07 12:00 AM");
    EXPECT_EQ(ShortLocal(At(2007, 10, 22, 0, 59)), "10/22/07 12:59 AM");
    EXPECT_EQ(ShortLocal(At(2007, 10, 22, 1, 5)), "10/22/07 1:05 AM");
    EXPECT_EQ(ShortLocal(At(2007, 10, 22, 11, 59)), "10/22/07 11:59 AM");
    EXPECT_EQ(ShortLocal(At(2007, 10, 22, 12, 0)), "10/22/07 12:00 PM");
    EXPECT_EQ(ShortLocal(At(2007, 1, 2, 13, 7, 59)), "1/02/07 1:07 PM");
    EXPECT_EQ(ShortLocal(At(2007, 10, 22, 23, 59)), "10/22/07 11:59 PM");
}

TEST_F(FeedDateTest, ShortLocalFormCountsYearsFrom1900UpTo2000) {
    EXPECT_EQ(ShortLocal(At(1999, 12, 31, 10)), "12/31/99 10:00 AM");
    EXPECT_EQ(ShortLocal(At(2000, 1, 1, 10)), "1/01/100 10:00 AM");
    EXPECT_EQ(ShortLocal(At(2001, 1, 1, 10)), "1/01/01 10:00 AM");
    EXPECT_EQ(ShortLocal(At(2038, 1, 1, 10)), "1/01/38 10:00 AM");
}

TEST_F(FeedDateTest, ShortLocalFormShowsTheDevicesTime) {
    clock_.setZone(kNewYorkSummer);
    EXPECT_EQ(ShortLocal(At(2007, 10, 22, 22, 16, 44)), "10/22/07 6:16 PM");
    clock_.setZone(kKolkata);
    EXPECT_EQ(ShortLocal(At(2007, 10, 22, 22, 16, 44)), "10/23/07 3:16 AM");
    // Crossing 2000 in local time changes the year form too.
    EXPECT_EQ(ShortLocal(At(2000, 12, 31, 20)), "1/01/01 1:00 AM");
}

TEST_F(FeedDateTest, EmptyDateFormatsAsEmptyText) {
    const FeedDate empty;
    std::string out = "stale";
    EXPECT_FALSE(empty.FormatRfc822(out));
    EXPECT_EQ(out, "");
    out = "stale";
    EXPECT_FALSE(empty.FormatShortLocal(out));
    EXPECT_EQ(out, "");
    EXPECT_EQ(empty.FormatRfc822(), u"");
    EXPECT_EQ(empty.FormatShortLocal(), u"");
}

TEST_F(FeedDateTest, Rfc822FormPrintsStoredFieldsAndFallsBackForBadNames) {
    FeedDate date;
    date.SetFromSystemTime({2007, 10, 1, 22, 22, 16, 44, 500});
    EXPECT_EQ(date.FormatRfc822(), u"Mon, 22 Oct 2007 22:16:44 GMT");
    date.SetFromSystemTime({2007, 13, 7, 2, 3, 4, 5, 0});
    EXPECT_EQ(date.FormatRfc822(), u"Sun, 2 Jan 2007 03:04:05 GMT");
    date.SetFromSystemTime({2007, 0, 9, 2, 3, 4, 5, 0});
    EXPECT_EQ(date.FormatRfc822(), u"Sun, 2 Jan 2007 03:04:05 GMT");
}

TEST_F(FeedDateTest, FormattingIsCutToTheLimit) {
    FeedDate date;
    date.SetFields(2007, 10, 22, 22, 16, 44, 0);
    std::string out;
    EXPECT_TRUE(date.FormatRfc822(out, 30));
    EXPECT_EQ(out, "Mon, 22 Oct 2007 22:16:44 GMT");
    EXPECT_FALSE(date.FormatRfc822(out, 29));
    EXPECT_EQ(out, "Mon, 22 Oct 2007 22:16:44 GM");
    EXPECT_FALSE(date.FormatShortLocal(out, 0));
    EXPECT_EQ(out, "");
    EXPECT_EQ(date.FormatShortLocal(9), u"10/22/07");
}

TEST_F(FeedDateTest, WrittenDatesReadBackUnchanged) {
    for (const SystemTime& time : {At(2000, 1, 1), At(2007, 10, 22, 22, 16, 44),
                                   At(2024, 2, 29, 12, 0, 59), At(2038, 12, 31, 23, 59, 59)}) {
        FeedDate written;
        written.SetFromSystemTime(time);
        FeedDate read;
        ASSERT_TRUE(read.Parse(written.FormatRfc822())) << written.time().year;
        EXPECT_EQ(read, written);
    }
}

TEST_F(FeedDateTest, WideTextsParseLikeBytes) {
    FeedDate date;
    ASSERT_TRUE(date.Parse(u"Mon, 22 Oct 2007 22:16:44 EST"));
    EXPECT_EQ(date.time(), At(2007, 10, 23, 3, 16, 44));
    ASSERT_TRUE(date.Parse(u"Пн, 22 Oct 2007 22:16:44 GMT"));
    EXPECT_EQ(date.time(), At(2007, 10, 22, 22, 16, 44));
    // A non-ASCII letter is no month name and no capital T.
    ASSERT_TRUE(date.Parse(u"Mon, 22 Ｏct 2007 22:16:44 GMT"));
    EXPECT_EQ(date.time().month, 1);
    EXPECT_FALSE(date.Parse(u"2007-10-22Ｔ22:16:44Z"));
    // Nothing after a NUL counts.
    EXPECT_FALSE(date.Parse(std::u16string_view(u"\0Mon, 22 Oct 2007 22:16:44 GMT", 30)));
}

} // namespace
} // namespace qf
