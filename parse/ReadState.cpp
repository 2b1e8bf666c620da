#include "parse/ReadState.h"

#include "parse/Charset.h"
#include "parse/FeedElements.h"
#include "parse/FeedReader.h"
#include "platform/Text.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace qf {

namespace {

std::u16string Folded(std::u16string_view text) {
    std::u16string folded(text);
    for (char16_t& c : folded) {
        c = FoldCase(c);
    }
    return folded;
}

// The channel's stories by link, ignoring case, each link with its stories in list order.
// Looking links up this way keeps a refresh of a channel with thousands of stories quick.
class StoriesByLink {
public:
    explicit StoriesByLink(const Channel::ItemList& items) {
        for (const auto& item : items) {
            if (item && !item->link().isNull()) {
                byLink_[Folded(item->link().view())].push_back(item.get());
            }
        }
    }

    const std::vector<NewsItem*>* Find(std::u16string_view link) const {
        const auto found = byLink_.find(Folded(link));
        return found == byLink_.end() ? nullptr : &found->second;
    }

private:
    std::unordered_map<std::u16string, std::vector<NewsItem*>> byLink_;
};

std::u16string_view StoryElementName(int32_t feedType) {
    return feedType == kFeedAtom ? u"entry" : u"item";
}

bool IsKnownFeedType(int32_t feedType) {
    return feedType == kFeedRdf || feedType == kFeedRss || feedType == kFeedAtom;
}

// The first story of `candidates` whose date shows as `shownDate`.
NewsItem* SameDate(const std::vector<NewsItem*>& candidates, std::u16string_view shownDate) {
    for (NewsItem* candidate : candidates) {
        if (EqualsIgnoreCase(candidate->date().FormatShortLocal(), shownDate)) {
            return candidate;
        }
    }
    return nullptr;
}

} // namespace

bool WriteReadStates(XmlDocument& document, const Channel& channel) {
    const int32_t feedType = channel.feedType();
    if (!document.RootNode() || !IsKnownFeedType(feedType)) {
        return false;
    }
    const StoriesByLink stories(channel.items());
    XmlNodeList elements = document.ElementsByTagName(StoryElementName(feedType));
    std::u16string key;
    for (XmlNode element = XmlDocument::ListNext(elements); element;
         element = XmlDocument::ListNext(elements)) {
        if (!ItemKey(document, element, key, feedType)) {
            continue;
        }
        if (const auto* matches = stories.Find(key)) {
            const std::u16string_view value =
                matches->front()->isRead() ? kReadValue : kUnreadValue;
            document.SetAttribute(element, kReadStateAttribute, WString(value));
        }
    }
    return true;
}

bool CarryReadStates(const Channel::ItemList& oldItems, Channel& channel) {
    const StoriesByLink stories(channel.items());
    bool carried = false;
    for (const auto& old : oldItems) {
        if (!old || old->link().isNull()) {
            continue;
        }
        const auto* candidates = stories.Find(old->link().view());
        if (candidates == nullptr) {
            continue;
        }
        if (NewsItem* same = SameDate(*candidates, old->date().FormatShortLocal())) {
            same->SetRead(old->read());
            carried = true;
        }
    }
    if (carried) {
        channel.CountItems();
    }
    return carried;
}

} // namespace qf
