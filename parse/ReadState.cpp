#include "parse/ReadState.h"

#include "parse/FeedElements.h"
#include "parse/FeedReader.h"
#include "parse/FeedType.h"
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

// What a story is matched by: its key, ignoring case, and when asked also its date as the short
// local form shows it (to the minute, ignoring case). Empty for a story without a key. No key
// holds U+0000, which XML cannot carry, so it keeps the two parts apart.
std::u16string MatchText(const NewsItem& item, bool withDate) {
    const std::u16string_view key = item.key();
    if (key.empty()) {
        return {};
    }
    std::u16string text = Folded(key);
    if (withDate) {
        text += u'\0';
        text += Folded(item.date().FormatShortLocal());
    }
    return text;
}

// The channel's stories by their match text, each with its stories in list order, handed out one
// after the other: the n-th story looked up under a text is the n-th in the list with it, so that
// stories sharing a key are matched in order. Looking stories up this way keeps a refresh of a
// channel with thousands of stories quick.
class StoriesInTurn {
public:
    StoriesInTurn(const Channel::ItemList& items, bool withDate) {
        for (const auto& item : items) {
            if (item) {
                std::u16string text = MatchText(*item, withDate);
                if (!text.empty()) {
                    byText_[std::move(text)].stories.push_back(item.get());
                }
            }
        }
    }

    // The next story not handed out yet under `text`; nullptr when there is none left.
    NewsItem* Next(const std::u16string& text) {
        const auto found = byText_.find(text);
        if (found == byText_.end()) {
            return nullptr;
        }
        Turn& turn = found->second;
        return turn.next < turn.stories.size() ? turn.stories[turn.next++] : nullptr;
    }

private:
    struct Turn {
        std::vector<NewsItem*> stories;
        std::size_t next = 0;
    };
    std::unordered_map<std::u16string, Turn> byText_;
};

std::u16string_view StoryElementName(int32_t feedType) {
    return feedType == kFeedAtom ? u"entry" : u"item";
}

bool IsKnownFeedType(int32_t feedType) {
    return feedType == kFeedRdf || feedType == kFeedRss || feedType == kFeedAtom;
}

} // namespace

bool WriteReadStates(XmlDocument& document, const Channel& channel) {
    const int32_t feedType = channel.feedType();
    if (!document.RootNode() || !IsKnownFeedType(feedType)) {
        return false;
    }
    StoriesInTurn stories(channel.items(), false);
    std::u16string key;
    for (const XmlNode element : document.ElementsByTagName(StoryElementName(feedType))) {
        if (!ItemKey(element, key, feedType)) {
            continue;
        }
        if (const NewsItem* story = stories.Next(Folded(key))) {
            const std::u16string_view value = story->isRead() ? kReadValue : kUnreadValue;
            document.SetAttribute(element, kReadStateAttribute, WString(value));
        }
    }
    return true;
}

bool CarryReadStates(const Channel::ItemList& oldItems, Channel& channel) {
    StoriesInTurn stories(channel.items(), true);
    bool carried = false;
    for (const auto& old : oldItems) {
        const std::u16string text = old ? MatchText(*old, true) : std::u16string();
        if (text.empty()) {
            continue;
        }
        if (NewsItem* same = stories.Next(text)) {
            same->SetRead(old->read());
            carried = true;
        }
    }
    if (carried) {
        channel.CountItems();
    }
    return carried;
}

NewsItem* SameStory(const Channel::ItemList& before, const NewsItem& story,
                    const Channel::ItemList& now) {
    const std::u16string text = MatchText(story, true);
    if (text.empty()) {
        return nullptr;
    }
    std::size_t turn = 0;
    for (const auto& item : before) {
        if (item.get() == &story) {
            break;
        }
        if (item && MatchText(*item, true) == text) {
            ++turn;
        }
    }
    for (const auto& item : now) {
        if (item && MatchText(*item, true) == text && turn-- == 0) {
            return item.get();
        }
    }
    return nullptr;
}

} // namespace qf
