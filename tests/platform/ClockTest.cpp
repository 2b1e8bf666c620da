#include "platform/Clock.h"

#include "support/TestEnv.h"

#include <ctime>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace qf {
namespace {

struct ZoneCase {
    const char* tz;
    int32_t bias;
    int32_t daylightBias;
};

// The season of the real "now" is whatever today is, so the daylight flag is checked through
// what it must add up to: the zone's offset right now.
void ExpectZone(const ZoneCase& expected) {
    test::EnvVar tz("TZ", expected.tz);
    const TimeZoneInfo zone = Clock::instance().timeZone();
    EXPECT_EQ(zone.biasMinutes, expected.bias) << expected.tz;
    EXPECT_EQ(zone.daylightBiasMinutes, expected.daylightBias) << expected.tz;
    ::tzset();
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    EXPECT_EQ(-(zone.biasMinutes + (zone.daylightNow ? zone.daylightBiasMinutes : 0)),
              local.tm_gmtoff / 60)
        << expected.tz;
    if (expected.daylightBias == 0) {
        EXPECT_FALSE(zone.daylightNow) << expected.tz;
    }
}

// Irish time is kept in the zone data with winter as the daylight season; the device still sees
// a standard bias of 0 with summer an hour ahead. Sydney's summer falls in January.
TEST(SystemClock, ReportsStandardBiasAndSummerShiftOfNamedZones) {
    if (!std::filesystem::exists("/usr/share/zoneinfo/America/New_York")) {
        GTEST_SKIP() << "no time-zone data installed (Debian package tzdata)";
    }
    for (const ZoneCase& zone :
         {ZoneCase{"America/New_York", 300, -60}, ZoneCase{"Europe/Berlin", -60, -60},
          ZoneCase{"Australia/Sydney", -600, -60}, ZoneCase{"Europe/Dublin", 0, -60},
          ZoneCase{"Asia/Kolkata", -330, 0}, ZoneCase{"UTC", 0, 0}}) {
        ExpectZone(zone);
    }
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
    for (const bool summerNow : {true, false}) {
        // Either a short season around today, or one around 1 July only.
        test::EnvVar tz("TZ", summerNow ? rule(today - 1, today + 2) : rule(179, 184));
        const TimeZoneInfo zone = Clock::instance().timeZone();
        EXPECT_EQ(zone.biasMinutes, 300);
        EXPECT_EQ(zone.daylightBiasMinutes, -60);
        EXPECT_EQ(zone.daylightNow, summerNow);
    }
}

} // namespace
} // namespace qf
