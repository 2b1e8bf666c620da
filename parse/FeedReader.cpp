#include "parse/FeedReader.h"

#include "model/Channel.h"
#include "model/NewsItem.h"
#include "parse/AtomReader.h"
#include "parse/FeedElements.h"
#include "parse/FeedType.h"
#include "parse/RssReader.h"

#include <optional>

namespace qf {

namespace {

constexpr std::u16string_view kLinkElement = u"link";
constexpr std::u16string_view kGuidElement = u"guid";
constexpr std::u16string_view kAtomIdElement = u"id";
constexpr std::u16string_view kTitleElement = u"title";

bool ReadByType(Channel& channel, bool takeTitle, XmlNode top, int32_t codePage) {
    switch (channel.feedType()) {
    case kFeedRdf:
        return ParseRdf(channel, takeTitle, top, codePage);
    case kFeedRss:
        return ParseRss(channel, takeTitle, top, codePage);
    case kFeedAtom:
        return ParseAtom(channel, takeTitle, top, codePage);
    default:
        return false;
    }
}

// The page address a `link` element gives: its text, or in Atom the `href` of a text/html link
// (none for other Atom links).
std::optional<std::u16string> PageLink(XmlNode link, int32_t feedType) {
    if (feedType != kFeedAtom) {
        return link.text();
    }
    return HtmlLinkHref(link);
}

} // namespace

bool ParseFeed(const XmlDocument& document, Channel& channel, bool takeTitle) {
    const XmlNode top = document.RootNode().firstElementChild();
    if (!top) {
        return false;
    }
    channel.SetFeedType(DetectFeedType(top.name()));
    const bool parsed = ReadByType(channel, takeTitle, top, document.declaredCodePage());
    channel.CountItems();
    return parsed;
}

bool ItemKey(XmlNode itemElement, std::u16string& out, int32_t feedType) {
    out.clear();
    if (feedType != kFeedRdf && feedType != kFeedRss && feedType != kFeedAtom) {
        return false;
    }
    // The first page link speaks for the element, as it always has, although the reader keeps
    // the last one; of several guids or titles the last counts, as it does for the reader.
    std::optional<std::u16string> link;
    std::u16string guid;
    std::u16string title;
    const std::u16string_view guidName = feedType == kFeedAtom ? kAtomIdElement : kGuidElement;
    for (const XmlNode child : itemElement.children()) {
        const std::u16string name = child.name();
        if (EqualsIgnoreCase(name, kLinkElement)) {
            if (!link) {
                link = PageLink(child, feedType);
            }
        } else if (EqualsIgnoreCase(name, guidName)) {
            guid = child.text();
        } else if (EqualsIgnoreCase(name, kTitleElement)) {
            title = child.text();
        }
    }
    out = StoryKey(link.value_or(std::u16string()), guid, title);
    return !out.empty();
}

} // namespace qf
