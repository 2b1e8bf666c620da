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

void ReadStateOf(XmlNode element, NewsItem& item) {
    if (const auto value = element.attribute(kReadStateAttribute)) {
        item.SetRead(EqualsIgnoreCase(*value, kReadValue) ? 1 : 0);
    }
}

std::optional<std::u16string> HtmlLinkHref(XmlNode link) {
    const auto type = link.attribute(kTypeAttribute);
    if (!type || !EqualsIgnoreCase(*type, kHtmlType)) {
        return std::nullopt;
    }
    return link.attribute(kHrefAttribute);
}

void SetImageAddress(Channel& channel, std::u16string_view url) {
    ChannelImage& image = channel.image();
    image.SetUrl(WString(url));
    image.SetLocalFile(WString(ImageFileName(channel.id(), url)));
}

} // namespace qf
