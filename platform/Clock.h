#pragma once

#include <cstdint>

namespace qf {

// A calendar time in the field order the program has always used: day of week 0 is Sunday.
struct SystemTime {
    uint16_t year = 0;
    uint16_t month = 0;
    uint16_t dayOfWeek = 0;
    uint16_t day = 0;
    uint16_t hour = 0;
    uint16_t minute = 0;
    uint16_t second = 0;
    uint16_t milliseconds = 0;

    friend bool operator==(const SystemTime&, const SystemTime&) = default;
};

// The machine's time-zone facts in the handheld's terms: UTC = local + bias (minutes), and the
// daylight bias is added to that while daylight-saving time is in force.
struct TimeZoneInfo {
    int32_t biasMinutes = 0;
    int32_t daylightBiasMinutes = 0;
    bool daylightNow = false;
};

// Where "now" and the time zone come from. The process-wide instance reads the system clock
// and the TZ zone; tests install their own to pin both.
class Clock {
public:
    virtual ~Clock() = default;
    virtual SystemTime nowUtc() const = 0;
    virtual TimeZoneInfo timeZone() const = 0;

    static const Clock& instance();
    // Installs `clock` (not owned) as the process-wide clock; nullptr restores the system clock.
    static void setInstance(const Clock* clock);
};

} // namespace qf
