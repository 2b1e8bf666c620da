#include "platform/Clock.h"

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
    // summer; derive both from the zone's offsets in January and July of this year.
    TimeZoneInfo timeZone() const override {
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        std::tm probe = local;
        probe.tm_mday = 1;
        probe.tm_hour = 12;
        probe.tm_isdst = -1;
        probe.tm_mon = 0;
        std::tm january{};
        std::time_t t = std::mktime(&probe);
        localtime_r(&t, &january);
        probe = local;
        probe.tm_mday = 1;
        probe.tm_hour = 12;
        probe.tm_isdst = -1;
        probe.tm_mon = 6;
        std::tm july{};
        t = std::mktime(&probe);
        localtime_r(&t, &july);
        const std::tm& standard = january.tm_isdst > 0 ? july : january;
        const std::tm& summer = january.tm_isdst > 0 ? january : july;

        TimeZoneInfo zone;
        zone.biasMinutes = static_cast<int32_t>(-standard.tm_gmtoff / 60);
        if (summer.tm_isdst > 0) {
            zone.daylightBiasMinutes =
                static_cast<int32_t>(-(summer.tm_gmtoff - standard.tm_gmtoff) / 60);
        }
        zone.daylightNow = local.tm_isdst > 0;
        return zone;
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
