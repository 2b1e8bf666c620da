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

void ReadImage(Channel& channel, XmlNode imageElement) {
    ChannelImage& image = channel.image();
    for (const XmlNode child : imageElement.children()) {
        switch (FieldOf(child.name(), kImageFields, ImageField::kNone)) {
        case ImageField::kTitle:
            image.SetTitle(WString(child.text()));
            break;
        case ImageField::kWidth:
            image.SetWidth(LeadingDecimal(child.text()));
            break;
        case ImageField::kHeight:
            image.SetHeight(LeadingDecimal(child.text()));
            break;
        case ImageField::kUrl:
            SetImageAddress(channel, child.text());
            break;
        case ImageField::kLink:
        case ImageField::kNone:
            break;
        }
    }
}

void ReadItem(Channel& channel, XmlNode itemElement, int32_t codePage) {
    auto item = std::make_unique<NewsItem>();
    item->SetCodePage(codePage);
    ReadStateOf(itemElement, *item);
    for (const XmlNode child : itemElement.children()) {
        switch (FieldOf(child.name(), kItemFields, ItemField::kNone)) {
        case ItemField::kTitle:
            item->SetTitle(WString(child.text()));
            break;
        case ItemField::kLink:
            item->SetLink(WString(child.text()));
            break;
        case ItemField::kGuid: // kept to tell linkless stories apart, never used as their link
            item->SetGuid(WString(child.text()));
            break;
        case ItemField::kPubDate:
            item->SetDate(DateOf(child.text()));
            break;
        case ItemField::kDescription:
            item->SetDescription(WString(child.text()));
            break;
        case ItemField::kNone:
            break;
        }
    }
    channel.AddItem(std::move(item));
}

// A language from the table picks the code page of the stories read after it and names the
// channel's encoding; an unknown one changes nothing.
void ApplyLanguage(Channel& channel, std::u16string_view language, int32_t& codePage) {
    int32_t picked = 0;
    std::u16string charsetName;
    if (LanguageToCodePage(WString(language), picked, charsetName)) {
        codePage = picked;
        channel.SetEncoding(WString(std::move(charsetName)));
    }
}

// `codePage` is where the stories' code page starts; a `language` changes it for the stories
// after it, within this channel's walk only.
void ReadChannel(Channel& channel, bool takeTitle, XmlNode channelElement, Dialect dialect,
                 int32_t codePage) {
    const bool rss = dialect == Dialect::kRss;
    for (const XmlNode child : channelElement.children()) {
        switch (FieldOf(child.name(), kChannelFields, ChannelField::kNone)) {
        case ChannelField::kTitle:
            if (takeTitle) {
                channel.SetTitle(WString(child.text()));
            }
            break;
        case ChannelField::kLanguage:
            if (rss) {
                ApplyLanguage(channel, child.text(), codePage);
            }
            break;
        case ChannelField::kLastBuildDate:
            channel.SetLastBuildDate(DateOf(child.text()));
            break;
        case ChannelField::kImage:
            if (rss) {
                ReadImage(channel, child);
            }
            break;
        case ChannelField::kItem:
            if (rss) {
                ReadItem(channel, child, codePage);
            }
            break;
        case ChannelField::kDescription:
        case ChannelField::kTtl:
        case ChannelField::kNone:
            break;
        }
    }
}

} // namespace

bool ParseRss(Channel& channel, bool takeTitle, XmlNode rootElement, int32_t codePage) {
    const XmlNode first = rootElement.firstElementChild();
    if (first.isNamed(kChannelElement)) {
        ReadChannel(channel, takeTitle, first, Dialect::kRss, codePage);
    }
    return true;
}

bool ParseRdf(Channel& channel, bool takeTitle, XmlNode rootElement, int32_t codePage) {
    for (const XmlNode child : rootElement.children()) {
        switch (FieldOf(child.name(), kRdfFields, RdfField::kNone)) {
        case RdfField::kChannel:
            ReadChannel(channel, takeTitle, child, Dialect::kRdf, codePage);
            break;
        case RdfField::kImage:
            ReadImage(channel, child);
            break;
        case RdfField::kItem:
            ReadItem(channel, child, codePage);
            break;
        case RdfField::kNone:
            break;
        }
    }
    return true;
}

} // namespace qf
