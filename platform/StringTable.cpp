#include "platform/StringTable.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qf {

namespace {

struct Entry {
    int id;
    std::u16string_view text;
};

// Sorted by id, so a text is found by binary search.
constexpr auto kStrings = std::to_array<Entry>({
    {40227, u"Default"},
    {40244, u"Failed to download the channel; Error code: "},
    {40245, u"Failed to parse the channel"},
});

static_assert(std::is_sorted(kStrings.begin(), kStrings.end(),
                             [](const Entry& a, const Entry& b) { return a.id < b.id; }));

} // namespace

std::u16string_view LoadString(int id) {
    const auto it = std::lower_bound(kStrings.begin(), kStrings.end(), id,
                                     [](const Entry& e, int key) { return e.id < key; });
    return it != kStrings.end() && it->id == id ? it->text : std::u16string_view();
}

} // namespace qf
