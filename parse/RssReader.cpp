#include "parse/RssReader.h"

#include "model/Channel.h"
#include "parse/Charset.h"
#include "parse/FeedElements.h"

#include <memory>

namespace qf {

namespace {

constexpr std::u16string_view kChannelElement = u"channel";

enum class ChannelField {
    kNone,
    kTitle,
    kDescription,
    kLanguage,
    kLastBuildDate,
    kTtl,
    kImage,
    kItem
};
constexpr std::array<FieldName<ChannelField>, 7> kChannelFields = {{
    {u"title", ChannelField::kTitle},
    {u"description", ChannelField::kDescription},
    {u"language", ChannelField::kLanguage},
    {u"lastBuildDate", ChannelField::kLastBuildDate},
    {u"ttl", ChannelField::kTtl},
    {u"image", ChannelField::kImage},
    {u"item", ChannelField::kItem},
}};

enum class ImageField { kNone, kTitle, kWidth, kHeight, kLink, kUrl };
constexpr std::array<FieldName<ImageField>, 5> kImageFields = {{
    {u"title", ImageField::kTitle},
    {u"width", ImageField::kWidth},
    {u"height", ImageField::kHeight},
    {u"link", ImageField::kLink},
    {u"url", ImageField::kUrl},
}};

enum class ItemField { kNone, kTitle, kLink, kGuid, kPubDate, kDescription };
constexpr std::array<FieldName<ItemField>, 5> kItemFields = {{
    {u"title", ItemField::kTitle},
    {u"link", ItemField::kLink},
    {u"guid", ItemField::kGuid},
    {u"pubDate", ItemField::kPubDate},
    {u"description", ItemField::kDescription},
}};

enum class RdfField { kNone, kChannel, kImage, kItem };
constexpr std::array<FieldName<RdfField>, 3> kRdfFields = {{
    {u"channel", RdfField::kChannel},
    {u"image", RdfField::kImage},
    {u"item", RdfField::kItem},
}};

// Whether the reader is walking an RSS channel or an RDF one, whose `channel` holds only the
// channel's own title and date.
enum class Dialect { kRss, kRdf };

void ReadImage(const XmlDocument& document, Channel& channel, XmlNode imageElement) {
    ChannelImage& image = channel.image();
    ForEachChild(document, imageElement, [&](XmlNode child) {
        switch (FieldOf(document.NodeName(child), kImageFields, ImageField::kNone)) {
        case ImageField::kTitle:
            image.SetTitle(WString(document.GetText(child)));
            break;
        case ImageField::kWidth:
            image.SetWidth(LeadingDecimal(document.GetText(child)));
            break;
        case ImageField::kHeight:
            image.SetHeight(LeadingDecimal(document.GetText(child)));
            break;
        case ImageField::kUrl:
            SetImageAddress(channel, document.GetText(child));
            break;
        case ImageField::kLink:
        case ImageField::kNone:
            break;
        }
    });
}

void ReadItem(const XmlDocument& document, Channel& channel, XmlNode itemElement) {
    auto item = std::make_unique<NewsItem>();
    item->SetCodePage(document.codePage());
    ReadStateOf(document, itemElement, *item);
    ForEachChild(document, itemElement, [&](XmlNode child) {
        switch (FieldOf(document.NodeName(child), kItemFields, ItemField::kNone)) {
        case ItemField::kTitle:
            item->SetTitle(WString(document.GetText(child)));
            break;
        case ItemField::kLink:
            item->SetLink(WString(document.GetText(child)));
            break;
        case ItemField::kGuid: // kept to tell linkless stories apart, never used as their link
            item->SetGuid(WString(document.GetText(child)));
            break;
        case ItemField::kPubDate:
            item->SetDate(DateOf(document.GetText(child)));
            break;
        case ItemField::kDescription:
            item->SetDescription(WString(document.GetText(child)));
            break;
        case ItemField::kNone:
            break;
        }
    });
    channel.AddItem(std::move(item));
}

// A language from the table picks the code page of the stories read after it; an unknown one
// changes nothing.
void ApplyLanguage(XmlDocument& document, Channel& channel, std::u16string_view language) {
    int32_t codePage = 0;
    std::u16string charsetName;
    if (LanguageToCodePage(WString(language), codePage, charsetName)) {
        document.setCodePage(codePage);
        channel.SetEncoding(WString(std::move(charsetName)));
    }
}

void ReadChannel(XmlDocument& document, Channel& channel, bool takeTitle, XmlNode channelElement,
                 Dialect dialect) {
    const bool rss = dialect == Dialect::kRss;
    ForEachChild(document, channelElement, [&](XmlNode child) {
        switch (FieldOf(document.NodeName(child), kChannelFields, ChannelField::kNone)) {
        case ChannelField::kTitle:
            if (takeTitle) {
                channel.SetTitle(WString(document.GetText(child)));
            }
            break;
        case ChannelField::kLanguage:
            if (rss) {
                ApplyLanguage(document, channel, document.GetText(child));
            }
            break;
        case ChannelField::kLastBuildDate:
            channel.SetLastBuildDate(DateOf(document.GetText(child)));
            break;
        case ChannelField::kImage:
            if (rss) {
                ReadImage(document, channel, child);
            }
            break;
        case ChannelField::kItem:
            if (rss) {
                ReadItem(document, channel, child);
            }
            break;
        case ChannelField::kDescription:
        case ChannelField::kTtl:
        case ChannelField::kNone:
            break;
        }
    });
}

} // namespace

bool ParseRss(XmlDocument& document, Channel& channel, bool takeTitle, XmlNode rootElement) {
    const XmlNode first = document.FirstElementChild(rootElement);
    if (first && EqualsIgnoreCase(document.NodeName(first), kChannelElement)) {
        ReadChannel(document, channel, takeTitle, first, Dialect::kRss);
    }
    return true;
}

bool ParseRdf(XmlDocument& document, Channel& channel, bool takeTitle, XmlNode rootElement) {
    ForEachChild(document, rootElement, [&](XmlNode child) {
        switch (FieldOf(document.NodeName(child), kRdfFields, RdfField::kNone)) {
        case RdfField::kChannel:
            ReadChannel(document, channel, takeTitle, child, Dialect::kRdf);
            break;
        case RdfField::kImage:
            ReadImage(document, channel, child);
            break;
        case RdfField::kItem:
            ReadItem(document, channel, child);
            break;
        case RdfField::kNone:
            break;
        }
    });
    return true;
}

} // namespace qf
