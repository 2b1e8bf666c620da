#include "parse/FeedReader.h"

#include "model/Channel.h"
#include "parse/AtomReader.h"
#include "parse/Charset.h"
#include "parse/FeedElements.h"
#include "parse/RssReader.h"

namespace qf {

namespace {

constexpr std::u16string_view kLinkElement = u"link";

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
    for (XmlNode child = document.FirstElementChild(itemElement); child;
         child = document.NextSibling(child)) {
        if (!EqualsIgnoreCase(document.NodeName(child), kLinkElement)) {
            continue;
        }
        if (feedType != kFeedAtom) {
            out = document.GetText(child);
            return true;
        }
        if (HtmlLinkHref(document, child, out)) {
            return true;
        }
        out.clear();
    }
    return false;
}

} // namespace qf
