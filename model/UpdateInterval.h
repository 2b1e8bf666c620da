#pragma once

#include <cstdint>

namespace qf {

// Units of an update interval, per channel and store-wide. Any other unit counts as seconds.
enum UpdateUnit : int32_t {
    kUnitMinutes = 0,
    kUnitHours = 1,
    kUnitDays = 2,
};

// A channel's updateValue and updateUnit hold this when the channel follows the store's interval.
inline constexpr int32_t kIntervalNotSet = -1;

// The interval in seconds; wide enough that no count of days can overflow it.
int64_t IntervalSeconds(int32_t value, int32_t unit);

} // namespace qf
