#include "model/FeedDate.h"

#include "platform/Text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <span>

namespace qf {

namespace {

constexpr std::array<const char*, 7> kDayNames{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<const char*, 12> kMonthNames{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Short years in feeds ("07") are read as years from 2000 on; the same rule turns 1999 into 3999,
// which the window below rejects.
constexpr int kShortYearBase = 2000;
constexpr int kFirstAcceptedYear = 1970;
constexpr int kLastAcceptedYear = 2038;
constexpr int kLastDayNumber = 31;

// The short display form counts years from 1900 up to 2000 and from 2000 after it.
constexpr int kDisplayCenturyEnd = 2000;
constexpr int kDisplayFirstCentury = 1900;
constexpr int kHoursPerHalfDay = 12;

constexpr int64_t kTicksPerMillisecond = 10'000;
constexpr int64_t kTicksPerSecond = 10'000'000;
constexpr int64_t kTicksPerMinute = 60 * kTicksPerSecond;
constexpr int64_t kTicksPerHour = 60 * kTicksPerMinute;
constexpr int64_t kSecondsPerMinute = 60;
constexpr int64_t kSecondsPerHour = 3'600;
constexpr int64_t kSecondsPerDay = 86'400;
constexpr int64_t kTicksPerDay = kSecondsPerDay * kTicksPerSecond;
// The tick count starts on 1 January 1601, a Monday. The 16-bit calendar fields and the tick
// count both hold times up to the end of 30827, as on the handheld.
constexpr int64_t kEpochYear = 1601;
constexpr int64_t kDayOfWeekOfEpoch = 1;
constexpr int64_t kYearAfterLast = 30828;

constexpr int64_t FloorDiv(int64_t a, int64_t b) {
    return a / b - ((a % b != 0) && ((a < 0) != (b < 0)) ? 1 : 0);
}

// Days since 1 March of year 0 in the proleptic Gregorian calendar, for the first of a month that
// may lie outside 1-12 (it carries into the year).
constexpr int64_t DayNumberOfMonthStart(int64_t year, int64_t month) {
    year += FloorDiv(month - 1, 12);
    month -= 12 * FloorDiv(month - 1, 12);
    const int64_t y = month <= 2 ? year - 1 : year;
    const int64_t era = FloorDiv(y, 400);
    const int64_t yearOfEra = y - era * 400;
    const int64_t dayOfYear = (153 * ((month + 9) % 12) + 2) / 5;
    return era * 146'097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
}

constexpr int64_t kDayNumberOfEpoch = DayNumberOfMonthStart(kEpochYear, 1);

constexpr int64_t DaysSinceEpoch(int64_t year, int64_t month, int64_t day) {
    return DayNumberOfMonthStart(year, month) - kDayNumberOfEpoch + day - 1;
}

constexpr int64_t kMaxTicks = DaysSinceEpoch(kYearAfterLast, 1, 1) * kTicksPerDay - 1;
static_assert(kMaxTicks <= std::numeric_limits<int64_t>::max() - kTicksPerDay);
static_assert(DaysSinceEpoch(1970, 1, 1) == 134'774);

struct CalendarFields {
    int64_t year, month, day, hour, minute, second, milliseconds;
};

// Out-of-range fields roll over into the next larger unit, so 30 February becomes 2 March.
int64_t TicksFromFields(const CalendarFields& f) {
    const int64_t seconds = DaysSinceEpoch(f.year, f.month, f.day) * kSecondsPerDay +
                            f.hour * kSecondsPerHour + f.minute * kSecondsPerMinute + f.second;
    const int64_t whole = std::clamp<int64_t>(seconds, 0, kMaxTicks / kTicksPerSecond);
    return std::clamp<int64_t>(whole * kTicksPerSecond + f.milliseconds * kTicksPerMillisecond, 0,
                               kMaxTicks);
}

int64_t TicksFromSystemTime(const SystemTime& t) {
    return TicksFromFields({t.year, t.month, t.day, t.hour, t.minute, t.second, t.milliseconds});
}

SystemTime SystemTimeFromTicks(int64_t ticks) {
    const int64_t days = ticks / kTicksPerDay;
    const int64_t dayNumber = days + kDayNumberOfEpoch;
    const int64_t era = FloorDiv(dayNumber, 146'097);
    const int64_t dayOfEra = dayNumber - era * 146'097;
    const int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36'524 - dayOfEra / 146'096) / 365;
    const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int64_t shiftedMonth = (5 * dayOfYear + 2) / 153; // March is 0
    const int64_t month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    const int64_t rest = ticks % kTicksPerDay;

    SystemTime t;
    t.year = static_cast<uint16_t>(yearOfEra + era * 400 + (month <= 2 ? 1 : 0));
    t.month = static_cast<uint16_t>(month);
    t.dayOfWeek = static_cast<uint16_t>((days + kDayOfWeekOfEpoch) % 7);
    t.day = static_cast<uint16_t>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
    t.hour = static_cast<uint16_t>(rest / kTicksPerHour);
    t.minute = static_cast<uint16_t>(rest % kTicksPerHour / kTicksPerMinute);
    t.second = static_cast<uint16_t>(rest % kTicksPerMinute / kTicksPerSecond);
    t.milliseconds = static_cast<uint16_t>(rest % kTicksPerSecond / kTicksPerMillisecond);
    return t;
}

// Moves a tick count by count units, held at the ends of the range instead of overflowing.
int64_t Advance(int64_t ticks, int64_t count, int64_t unitTicks) {
    count = std::clamp(count, -(ticks / unitTicks) - 1, (kMaxTicks - ticks) / unitTicks + 1);
    return std::clamp<int64_t>(ticks + count * unitTicks, 0, kMaxTicks);
}

// Hours to add to the device's clock reading to correct a summer zone: the daylight bias in
// whole hours while the device itself is in summer time, otherwise nothing.
int DeviceDaylightHours() {
    const TimeZoneInfo zone = Clock::instance().timeZone();
    return zone.daylightNow ? zone.daylightBiasMinutes / 60 : 0;
}

// What a date text yields before it is checked; both attempts write into the same fields, so
// whatever the first one found stays unless the second one overwrites it.
struct DateText {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    std::string_view zone;
};

int ExpandYear(int year) {
    return year < kShortYearBase ? year + kShortYearBase : year;
}

// Fills `tokens` with the first pieces of `text` between runs of the separators; answers how many.
std::size_t Split(std::string_view text, std::string_view separators,
                  std::span<std::string_view> tokens) {
    std::size_t count = 0;
    std::size_t pos = text.find_first_not_of(separators);
    while (pos != std::string_view::npos && count < tokens.size()) {
        const std::size_t end = std::min(text.find_first_of(separators, pos), text.size());
        tokens[count++] = text.substr(pos, end - pos);
        pos = text.find_first_not_of(separators, end);
    }
    return count;
}

std::size_t DigitRuns(std::string_view text, std::span<std::string_view> runs) {
    std::size_t count = 0;
    std::size_t pos = 0;
    while (count < runs.size()) {
        while (pos < text.size() && (text[pos] < '0' || text[pos] > '9')) {
            ++pos;
        }
        if (pos == text.size()) {
            break;
        }
        const std::size_t start = pos;
        while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') {
            ++pos;
        }
        runs[count++] = text.substr(start, pos - start);
    }
    return count;
}

// "Mon, 22 Oct 2007 22:16:44 GMT", read purely by position: the day name must be there, and
// missing pieces leave their fields alone.
void ReadRfc822(std::string_view text, DateText& date) {
    std::array<std::string_view, 8> tokens;
    const std::size_t count = Split(text, " ,:", tokens);
    if (count > 1) {
        date.day = LeadingDecimal(tokens[1]);
    }
    if (count > 2) {
        date.month = FeedDate::MonthNumber(tokens[2]);
    }
    if (count > 3) {
        date.year = ExpandYear(LeadingDecimal(tokens[3]));
    }
    int* const clock[] = {&date.hour, &date.minute, &date.second};
    for (std::size_t i = 0; i < std::size(clock) && 4 + i < count; ++i) {
        *clock[i] = LeadingDecimal(tokens[4 + i]);
    }
    if (count > 7) {
        date.zone = tokens[7];
    }
}

// "2007-10-22T22:16:44Z": digit runs before and after the capital T. A fourth run in the time
// (a fraction of a second, or the hours of an offset) becomes the zone text, which no zone name
// matches, so such times count as UTC.
bool ReadIso8601(std::string_view text, DateText& date) {
    const std::size_t t = text.find('T');
    if (t == std::string_view::npos) {
        return false;
    }
    std::array<std::string_view, 3> day;
    const std::size_t dayCount = DigitRuns(text.substr(0, t), day);
    if (dayCount > 0) {
        date.year = ExpandYear(LeadingDecimal(day[0]));
    }
    if (dayCount > 1) {
        date.month = LeadingDecimal(day[1]);
    }
    if (dayCount > 2) {
        date.day = LeadingDecimal(day[2]);
    }

    std::string_view time = text.substr(t + 1);
    time = time.substr(0, time.find('Z'));
    std::array<std::string_view, 4> runs;
    const std::size_t runCount = DigitRuns(time, runs);
    int* const clock[] = {&date.hour, &date.minute, &date.second};
    for (std::size_t i = 0; i < std::size(clock) && i < runCount; ++i) {
        *clock[i] = LeadingDecimal(runs[i]);
    }
    if (runCount > 3) {
        date.zone = runs[3];
    }
    return true;
}

// Hours, minutes and seconds are not checked: they roll over when the date is stored.
bool IsAcceptable(const DateText& date) {
    return date.year >= kFirstAcceptedYear && date.year <= kLastAcceptedYear && date.month >= 1 &&
           date.month <= static_cast<int>(kMonthNames.size()) && date.day >= 1 &&
           date.day <= kLastDayNumber;
}

bool Store(const DateText& date, FeedDate& out) {
    if (!IsAcceptable(date)) {
        return false;
    }
    out.SetFields(date.year, date.month, date.day, date.hour, date.minute, date.second,
                  FeedDate::ZoneHours(date.zone));
    return true;
}

// The formatted text, cut to what a buffer of `limit` units (terminator included) holds.
bool Fit(std::string_view text, std::size_t limit, std::string& out) {
    out = text.substr(0, limit == 0 ? 0 : std::min(text.size(), limit - 1));
    return text.size() < limit;
}

template <typename... Args>
bool Print(std::string& out, std::size_t limit, const char* format, Args... args) {
    std::array<char, 96> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), format, args...);
    return Fit(std::string_view(buffer.data(), static_cast<std::size_t>(std::max(length, 0))),
               limit, out);
}

} // namespace

bool FeedDate::Parse(std::u16string_view text) {
    // Code page 0 is UTF-8 unless configured otherwise; either way only ASCII characters can
    // mean anything in a date, and they come through unchanged.
    return Parse(Utf16ToUtf8(text.substr(0, text.find(u'\0'))));
}

// An ISO text with a colon in its offset never reaches the second attempt: the first one reads
// it as 16 January 2000 (or similar) and accepts it. Feeds and stored files depend on this order.
bool FeedDate::Parse(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    DateText date;
    ReadRfc822(text, date);
    if (Store(date, *this)) {
        return true;
    }
    if (ReadIso8601(text, date) && Store(date, *this)) {
        return true;
    }
    Clear();
    return false;
}

void FeedDate::SetFields(int year, int month, int day, int hour, int minute, int second,
                         int zoneHours) {
    const int64_t ticks = TicksFromFields({year, month, day, hour, minute, second, 0});
    time_ = SystemTimeFromTicks(Advance(ticks, zoneHours, kTicksPerHour));
    valid_ = true;
}

void FeedDate::AddHours(int64_t hours) {
    time_ = SystemTimeFromTicks(Advance(Ticks(), hours, kTicksPerHour));
}

void FeedDate::AddSeconds(int64_t seconds) {
    time_ = SystemTimeFromTicks(Advance(Ticks(), seconds, kTicksPerSecond));
}

void FeedDate::SetFromSystemTime(const SystemTime& time) {
    time_ = time;
    valid_ = true;
}

int64_t FeedDate::Ticks() const {
    return TicksFromSystemTime(time_);
}

int64_t FeedDate::SecondsBetween(const FeedDate& a, const FeedDate& b) {
    return a.Ticks() / kTicksPerSecond - b.Ticks() / kTicksPerSecond;
}

FeedDate FeedDate::NowUtc() {
    FeedDate now;
    now.SetFromSystemTime(Clock::instance().nowUtc());
    return now;
}

SystemTime FeedDate::NowLocal() {
    const Clock& clock = Clock::instance();
    const TimeZoneInfo zone = clock.timeZone();
    const int64_t biasMinutes =
        int64_t{zone.biasMinutes} + (zone.daylightNow ? zone.daylightBiasMinutes : 0);
    return SystemTimeFromTicks(
        Advance(TicksFromSystemTime(clock.nowUtc()), -biasMinutes, kTicksPerMinute));
}

int FeedDate::MonthNumber(std::string_view name) {
    for (std::size_t i = 0; i < kMonthNames.size(); ++i) {
        if (EqualsIgnoreCase(name, kMonthNames[i])) {
            return static_cast<int>(i) + 1;
        }
    }
    return 1;
}

// The summer names follow the device's own season, not the date's: EDT is 4 hours only while
// the device itself observes summer time. Files and feeds written so far rely on it.
int FeedDate::ZoneHours(std::string_view zone) {
    struct Zone {
        std::string_view name;
        int hours;
        bool summer;
    };
    static constexpr std::array<Zone, 10> kZones{{{"GMT", 0, false},
                                                  {"UT", 0, false},
                                                  {"EST", 5, false},
                                                  {"EDT", 5, true},
                                                  {"CST", 6, false},
                                                  {"CDT", 6, true},
                                                  {"MST", 7, false},
                                                  {"MDT", 7, true},
                                                  {"PST", 8, false},
                                                  {"PDT", 8, true}}};
    for (const Zone& entry : kZones) {
        if (EqualsIgnoreCase(zone, entry.name)) {
            return entry.hours + (entry.summer ? DeviceDaylightHours() : 0);
        }
    }
    return 0;
}

SystemTime FeedDate::ToLocal(const SystemTime& utc) {
    const TimeZoneInfo zone = Clock::instance().timeZone();
    int64_t hours = -(int64_t{zone.biasMinutes} / 60);
    if (zone.daylightNow) {
        hours -= zone.daylightBiasMinutes / 60;
    }
    return SystemTimeFromTicks(Advance(TicksFromSystemTime(utc), hours, kTicksPerHour));
}

bool FeedDate::FormatRfc822(std::string& out, std::size_t limit) const {
    out.clear();
    if (!valid()) {
        return false;
    }
    const char* day =
        time_.dayOfWeek < kDayNames.size() ? kDayNames[time_.dayOfWeek] : kDayNames[0];
    const char* month = time_.month >= 1 && time_.month <= kMonthNames.size()
                            ? kMonthNames[time_.month - 1U]
                            : kMonthNames[0];
    return Print(out, limit, "%s, %d %s %d %02d:%02d:%02d GMT", day, int{time_.day}, month,
                 int{time_.year}, int{time_.hour}, int{time_.minute}, int{time_.second});
}

std::u16string FeedDate::FormatRfc822(std::size_t limit) const {
    std::string bytes;
    FormatRfc822(bytes, limit);
    return AsciiToUtf16(bytes);
}

bool FeedDate::FormatShortLocal(std::string& out, std::size_t limit) const {
    out.clear();
    if (!valid()) {
        return false;
    }
    const SystemTime local = ToLocal(time_);
    const int year = local.year <= kDisplayCenturyEnd ? local.year - kDisplayFirstCentury
                                                      : local.year - kDisplayCenturyEnd;
    const int hour =
        local.hour % kHoursPerHalfDay == 0 ? kHoursPerHalfDay : local.hour % kHoursPerHalfDay;
    return Print(out, limit, "%d/%02d/%02d %d:%02d %s", int{local.month}, int{local.day}, year,
                 hour, int{local.minute}, local.hour < kHoursPerHalfDay ? "AM" : "PM");
}

std::u16string FeedDate::FormatShortLocal(std::size_t limit) const {
    std::string bytes;
    FormatShortLocal(bytes, limit);
    return AsciiToUtf16(bytes);
}

} // namespace qf
