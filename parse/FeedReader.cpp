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

bool ReadByType(XmlDocument& document, Channel& channel, bool takeTitle, XmlNode top) {
    switch (channel.feedType()) {
    case kFeedRdf:
        return ParseRdf(document, channel, takeTitle, top);
    case kFeedRss:
        return ParseRss(document, channel, takeTitle, top);
    case kFeedAtom:
        return ParseAtom(document, channel, takeTitle, top);
    default:
        return false;
    }
}

// The page address a `link` element gives: its text, or in Atom the `href` of a text/html link
// (none for other Atom links).
std::optional<std::u16string> PageLink(const XmlDocument& document, XmlNode link,
                                       int32_t feedType) {
    if (feedType != kFeedAtom) {
        return document.GetText(link);
    }
    std::u16string href;
    if (HtmlLinkHref(document, link, href)) {
        return href;
    }
    return std::nullopt;
}

} // namespace

bool ParseFeed(XmlDocument& document, Channel& channel, bool takeTitle) {
    const XmlNode root = document.RootNode();
    if (!root) {
        return false;
    }
    const XmlNode top = document.FirstElementChild(root);
    if (!top) {
        return false;
    }
    channel.SetFeedType(DetectFeedType(document.NodeName(top)));
    const bool parsed = ReadByType(document, channel, takeTitle, top);
    channel.CountItems();
    return parsed;
}

bool ItemKey(const XmlDocument& document, XmlNode itemElement, std::u16string& out,
             int32_t feedType) {
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
    ForEachChild(document, itemElement, [&](XmlNode child) {
        const std::u16string name = document.NodeName(child);
        if (EqualsIgnoreCase(name, kLinkElement)) {
            if (!link) {
                link = PageLink(document, child, feedType);
            }
        } else if (EqualsIgnoreCase(name, guidName)) {
            guid = document.GetText(child);
        } else if (EqualsIgnoreCase(name, kTitleElement)) {
            title = document.GetText(child);
        }
    });
    out = StoryKey(link.value_or(std::u16string()), guid, title);
    return !out.empty();
}

} // namespace qf
