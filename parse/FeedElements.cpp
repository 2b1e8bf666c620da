#include "parse/FeedElements.h"

#include "model/CachedFileNames.h"
#include "model/Channel.h"
#include "model/NewsItem.h"

namespace qf {

namespace {

constexpr std::u16string_view kTypeAttribute = u"type";
constexpr std::u16string_view kHrefAttribute = u"href";
constexpr std::u16string_view kHtmlType = u"text/html";

} // namespace

FeedDate DateOf(std::u16string_view text) {
    FeedDate date;
    date.Parse(text);
    return date;
}

void ReadStateOf(const XmlDocument& document, XmlNode element, NewsItem& item) {
    std::u16string value;
    if (document.GetAttribute(document.Attributes(element), kReadStateAttribute, value)) {
        item.SetRead(EqualsIgnoreCase(value, kReadValue) ? 1 : 0);
    }
}

bool HtmlLinkHref(const XmlDocument& document, XmlNode link, std::u16string& href) {
    const XmlAttributes attributes = document.Attributes(link);
    std::u16string type;
    return document.GetAttribute(attributes, kTypeAttribute, type) &&
           EqualsIgnoreCase(type, kHtmlType) &&
           document.GetAttribute(attributes, kHrefAttribute, href);
}

void SetImageAddress(Channel& channel, std::u16string_view url) {
    ChannelImage& image = channel.image();
    image.SetUrl(WString(url));
    image.SetLocalFile(WString(ImageFileName(channel.id(), url)));
}

} // namespace qf
