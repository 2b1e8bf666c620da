#include "platform/Clock.h"

#include <algorithm>
#include <atomic>
#include <ctime>

namespace qf {

namespace {

SystemTime FromTm(const std::tm& tm, long nanoseconds) {
    SystemTime t;
    t.year = static_cast<uint16_t>(tm.tm_year + 1900);
    t.month = static_cast<uint16_t>(tm.tm_mon + 1);
    t.dayOfWeek = static_cast<uint16_t>(tm.tm_wday);
    t.day = static_cast<uint16_t>(tm.tm_mday);
    t.hour = static_cast<uint16_t>(tm.tm_hour);
    t.minute = static_cast<uint16_t>(tm.tm_min);
    t.second = static_cast<uint16_t>(tm.tm_sec);
    t.milliseconds = static_cast<uint16_t>(nanoseconds / 1000000);
    return t;
}

// Reads the clock and the TZ zone of the process.
class SystemClock : public Clock {
public:
    SystemTime nowUtc() const override {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        std::tm tm{};
        gmtime_r(&now.tv_sec, &tm);
        return FromTm(tm, now.tv_nsec);
    }

    // The handheld's bias is standard time's offset, and the daylight bias the extra shift in
    // summer. Both come from the zone's offsets in January, July and now, taken by value
    // rather than by the isdst flag: the zone data keeps Irish time with winter as the daylight
    // season, which the handheld would see as standard time with summer an hour ahead.
    TimeZoneInfo timeZone() const override {
        // localtime_r need not notice a changed TZ on its own.
        ::tzset();
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        // Today's offset joins the probes so that a summer season covering neither probe day
        // still shows, and the local time always comes out right.
        const auto [standard, summer] =
            std::minmax({OffsetOnFirstOf(local, 0), OffsetOnFirstOf(local, 6), local.tm_gmtoff});

        TimeZoneInfo zone;
        zone.biasMinutes = static_cast<int32_t>(-standard / 60);
        zone.daylightBiasMinutes = static_cast<int32_t>(-(summer - standard) / 60);
        zone.daylightNow = summer != standard && local.tm_gmtoff == summer;
        return zone;
    }

private:
    // Seconds east of UTC at local noon on the first of `month` in the year of `probe`.
    static long OffsetOnFirstOf(std::tm probe, int month) {
        probe.tm_mon = month;
        probe.tm_mday = 1;
        probe.tm_hour = 12;
        probe.tm_min = 0;
        probe.tm_sec = 0;
        probe.tm_isdst = -1;
        const std::time_t t = std::mktime(&probe);
        std::tm result{};
        localtime_r(&t, &result);
        return result.tm_gmtoff;
    }
};

const SystemClock kSystemClock;
std::atomic<const Clock*> gClock{nullptr};

} // namespace

const Clock& Clock::instance() {
    const Clock* clock = gClock.load(std::memory_order_acquire);
    return clock != nullptr ? *clock : kSystemClock;
}

void Clock::setInstance(const Clock* clock) {
    gClock.store(clock, std::memory_order_release);
}

} // namespace qf
