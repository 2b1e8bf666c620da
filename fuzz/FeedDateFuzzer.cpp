// Feeds arbitrary bytes to both forms of FeedDate::Parse and formats whatever comes out. Beyond
// crashes it checks the promises callers build on: a refused text leaves an empty date, and a
// stored date written as RFC 822 text reads back as the same date.
#include "model/FeedDate.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

// A device in summer time an hour off UTC, so that the season-dependent zone names and the
// local shift both take part; the system clock would reread the time zone on every call.
class SummerClock : public qf::Clock {
public:
    qf::SystemTime nowUtc() const override { return {2007, 10, 1, 22, 22, 16, 44, 0}; }
    qf::TimeZoneInfo timeZone() const override { return {300, -60, true}; }
};

void Check(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void CheckDate(const qf::FeedDate& date, bool parsed) {
    Check(parsed == date.valid());
    std::string rfc822;
    std::string local;
    Check(date.FormatRfc822(rfc822) == parsed);
    Check(date.FormatShortLocal(local) == parsed);
    Check(date.FormatRfc822().size() == rfc822.size());
    Check(date.FormatShortLocal(8).size() <= 7);
    if (!parsed) {
        Check(date == qf::FeedDate() && rfc822.empty() && local.empty());
        return;
    }
    // Rolling hours can carry a date out of the accepted years, and years before 2000 are read
    // back 2000 years later; every other date must survive its own file form.
    const int year = date.time().year;
    if (year >= 2000 && year <= 2038) {
        qf::FeedDate again;
        Check(again.Parse(rfc822));
        Check(again == date);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const SummerClock clock;
    qf::Clock::setInstance(&clock);

    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    qf::FeedDate date;
    CheckDate(date, date.Parse(bytes));

    std::u16string wide(size / 2, u'\0');
    for (std::size_t i = 0; i < wide.size(); ++i) {
        wide[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
    }
    qf::FeedDate wideDate;
    CheckDate(wideDate, wideDate.Parse(wide));
    return 0;
}
