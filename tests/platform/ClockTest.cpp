#include "platform/Clock.h"

#include "support/TestEnv.h"

#include <ctime>
#include <filesystem>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace qf {
namespace {

// The system clock under a named TZ zone. The season of "now" is whatever the real date is, so
// the daylight flag is checked through what it must add up to: the zone's offset right now.
class SystemClockZone : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists("/usr/share/zoneinfo/America/New_York")) {
            GTEST_SKIP() << "no time-zone data installed (Debian package tzdata)";
        }
    }

    void Use(const std::string& zone) { tz_.emplace("TZ", zone); }

    static long OffsetNowMinutes() {
        ::tzset();
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        return local.tm_gmtoff / 60;
    }

    static void ExpectMatchesOffsetNow(const TimeZoneInfo& zone) {
        const long bias = zone.biasMinutes + (zone.daylightNow ? zone.daylightBiasMinutes : 0);
        EXPECT_EQ(-bias, OffsetNowMinutes());
    }

    std::optional<test::EnvVar> tz_;
};

TEST_F(SystemClockZone, ZoneWithSummerTimeReportsStandardBiasAndOneHourDaylightBias) {
    Use("America/New_York");
    const TimeZoneInfo zone = Clock::instance().timeZone();
    EXPECT_EQ(zone.biasMinutes, 300);
    EXPECT_EQ(zone.daylightBiasMinutes, -60);
    ExpectMatchesOffsetNow(zone);

    Use("Europe/Berlin");
    const TimeZoneInfo berlin = Clock::instance().timeZone();
    EXPECT_EQ(berlin.biasMinutes, -60);
    EXPECT_EQ(berlin.daylightBiasMinutes, -60);
    ExpectMatchesOffsetNow(berlin);
}

TEST_F(SystemClockZone, SouthernSummerInJanuaryIsStillTheDaylightSide) {
    Use("Australia/Sydney");
    const TimeZoneInfo zone = Clock::instance().timeZone();
    EXPECT_EQ(zone.biasMinutes, -600);
    EXPECT_EQ(zone.daylightBiasMinutes, -60);
    ExpectMatchesOffsetNow(zone);
}

// Irish winter time is kept in the zone data as a negative daylight shift; the device's view is
// still a standard bias of 0 with summer an hour ahead.
TEST_F(SystemClockZone, NegativeDaylightShiftIsSeenFromTheWinterSide) {
    Use("Europe/Dublin");
    const TimeZoneInfo zone = Clock::instance().timeZone();
    EXPECT_EQ(zone.biasMinutes, 0);
    EXPECT_EQ(zone.daylightBiasMinutes, -60);
    ExpectMatchesOffsetNow(zone);
}

TEST_F(SystemClockZone, ZonesWithoutSummerTimeAreNeverInDaylightTime) {
    Use("Asia/Kolkata");
    const TimeZoneInfo kolkata = Clock::instance().timeZone();
    EXPECT_EQ(kolkata.biasMinutes, -330);
    EXPECT_EQ(kolkata.daylightBiasMinutes, 0);
    EXPECT_FALSE(kolkata.daylightNow);

    Use("UTC");
    const TimeZoneInfo utc = Clock::instance().timeZone();
    EXPECT_EQ(utc.biasMinutes, 0);
    EXPECT_EQ(utc.daylightBiasMinutes, 0);
    EXPECT_FALSE(utc.daylightNow);
}

// A rule-based TZ needs no zone data, and lets the summer season be placed around today.
TEST(SystemClock, DaylightNowFollowsTheZonesRuleForToday) {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    const int today = utc.tm_yday;
    if (today < 2 || today > 360 || (today > 177 && today < 187)) {
        GTEST_SKIP() << "today is too close to a probed day of the year";
    }
    const auto rule = [](int first, int end) {
        return "QST5QDT," + std::to_string(first) + "/0," + std::to_string(end) + "/0";
    };
    {
        test::EnvVar tz("TZ", rule(today - 1, today + 2));
        const TimeZoneInfo zone = Clock::instance().timeZone();
        EXPECT_EQ(zone.biasMinutes, 300);
        EXPECT_EQ(zone.daylightBiasMinutes, -60);
        EXPECT_TRUE(zone.daylightNow);
    }
    {
        test::EnvVar tz("TZ", rule(179, 184)); // around 1 July only
        const TimeZoneInfo zone = Clock::instance().timeZone();
        EXPECT_EQ(zone.biasMinutes, 300);
        EXPECT_EQ(zone.daylightBiasMinutes, -60);
        EXPECT_FALSE(zone.daylightNow);
    }
}

TEST(Clock, InstalledClockReplacesTheSystemClockWhileItLives) {
    const SystemTime pinned{2007, 10, 1, 22, 22, 16, 44, 0};
    {
        test::FakeClock fake(pinned, {300, -60, true});
        EXPECT_EQ(Clock::instance().nowUtc(), pinned);
        EXPECT_TRUE(Clock::instance().timeZone().daylightNow);
    }
    EXPECT_NE(Clock::instance().nowUtc().year, 2007);
}

} // namespace
} // namespace qf
