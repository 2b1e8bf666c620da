#include "parse/SameStory.h"

#include "platform/Text.h"

namespace qf {

namespace {

// Placeholder key until the read-state key is shared: the link and the date.
bool SameKey(const NewsItem& a, const NewsItem& b) {
    return !a.link().isNull() && !b.link().isNull() &&
           EqualsIgnoreCase(a.link().view(), b.link().view()) &&
           a.date().FormatShortLocal() == b.date().FormatShortLocal();
}

} // namespace

NewsItem* SameStory(const Channel::ItemList& before, const NewsItem& story,
                    const Channel::ItemList& now) {
    int place = 0;
    for (const auto& item : before) {
        if (item.get() == &story) {
            break;
        }
        if (item && SameKey(*item, story)) {
            ++place;
        }
    }
    for (const auto& item : now) {
        if (item && SameKey(*item, story) && place-- == 0) {
            return item.get();
        }
    }
    return nullptr;
}

} // namespace qf
