#include "model/UpdateInterval.h"

namespace qf {

int64_t IntervalSeconds(int32_t value, int32_t unit) {
    constexpr int64_t kSecondsPerMinute = 60;
    constexpr int64_t kSecondsPerHour = 3600;
    constexpr int64_t kSecondsPerDay = 86400;
    switch (unit) {
    case kUnitMinutes:
        return value * kSecondsPerMinute;
    case kUnitHours:
        return value * kSecondsPerHour;
    case kUnitDays:
        return value * kSecondsPerDay;
    default:
        return value;
    }
}

} // namespace qf
