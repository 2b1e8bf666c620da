#pragma once

#include "platform/Clock.h"
#include "platform/Text.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qf {

// Every date of the program: parsed leniently from RFC 822 and ISO 8601 feed texts into UTC,
// written to files as RFC 822 text and shown in a short local form. The parsing quirks are
// part of what users and files rely on; see FeedDate.cpp.
class FeedDate {
public:
    FeedDate() = default;

    // Parses a feed date; on failure the date is cleared and false is answered. Only the text
    // before a NUL counts, as in the C strings these texts come from.
    bool Parse(std::u16string_view text);
    bool Parse(std::string_view text);

    // Stores the fields and marks the date set; with zoneHours 0 they are normalised (day of week
    // filled, 30 February rolled into March), otherwise zoneHours hours are added to reach UTC.
    // Times beyond 1601-01-01 .. 30827-12-31 are held at those ends.
    void SetFields(int year, int month, int day, int hour, int minute, int second, int zoneHours);
    void AddHours(int64_t hours);
    void AddSeconds(int64_t seconds);
    void SetFromSystemTime(const SystemTime& time);
    void Clear() { *this = FeedDate(); }

    bool valid() const { return valid_; }
    const SystemTime& time() const { return time_; }

    // 100-nanosecond intervals since 1 January 1601 UTC.
    int64_t Ticks() const;
    static int64_t SecondsBetween(const FeedDate& a, const FeedDate& b);

    static FeedDate NowUtc();
    // The device's own local time, to the minute.
    static SystemTime NowLocal();
    static int MonthNumber(std::string_view name);
    static int ZoneHours(std::string_view zone);
    // Shifts by whole hours only, so a zone of UTC+5:30 displays as UTC+5.
    static SystemTime ToLocal(const SystemTime& utc);

    // "Mon, 22 Oct 2007 22:16:44 GMT"; empty (and false) for an empty date. The limit counts a
    // terminator: at most limit - 1 characters are kept, and false is answered when that cuts.
    bool FormatRfc822(std::string& out, std::size_t limit = kFormattedCapacity) const;
    std::u16string FormatRfc822(std::size_t limit = kFormattedCapacity) const;
    // "10/22/07 10:16 PM" in local time; empty (and false) for an empty date; limit as above.
    bool FormatShortLocal(std::string& out, std::size_t limit = kFormattedCapacity) const;
    std::u16string FormatShortLocal(std::size_t limit = kFormattedCapacity) const;

    friend bool operator==(const FeedDate&, const FeedDate&) = default;

private:
    SystemTime time_;
    bool valid_ = false;
};

} // namespace qf
