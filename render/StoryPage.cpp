#include "render/StoryPage.h"

#include "model/Channel.h"
#include "model/NewsItem.h"
#include "render/PageMarkup.h"

namespace qf {

namespace {

using namespace markup;

// What comes before the body and what comes after it are each held to this many units, one
// kept for a terminator; a very long title or charset name cuts the page there. The body
// itself is never cut.
constexpr std::size_t kSectionCapacity = kFormattedCapacity;

constexpr std::u16string_view kTableOpen =
    u"<table border=\"0\" cellPadding=\"0\" cellSpacing=\"0\">";
// The blank before '=' has always been part of these rows.
constexpr std::u16string_view kSpacer8 = u"<tr><td height =\"8\"></td></tr>";
constexpr std::u16string_view kSpacer4 = u"<tr><td height =\"4\"></td></tr>";
constexpr std::u16string_view kRowOpen = u"<tr><td>";
constexpr std::u16string_view kRowClose = u"</td></tr>";
constexpr std::u16string_view kDateOpen = u"<small><font color='#808080'>Published: ";
constexpr std::u16string_view kDateClose = u"</font></small><br>";

void Add(std::u16string& section, std::initializer_list<std::u16string_view> pieces) {
    AppendPieces(section, pieces, kSectionCapacity);
}

// The picture row has no spacer above it and ends in a line break, while the title row is
// framed by spacers; the two forms have always differed so.
void AddBanner(std::u16string& head, const Channel& channel, const PageContext& context) {
    const std::u16string logoPath = LogoPath(channel.image(), context);
    if (LogoOnDisk(logoPath)) {
        Add(head, {kRowOpen, u"<img src=\"", kFileUrlScheme, logoPath, u"\">", u"<br>", kRowClose,
                   kSpacer8});
    } else {
        Add(head, {kSpacer8, kRowOpen, kBannerTitleOpen, channel.title().view(), kBannerTitleClose,
                   kRowClose, kSpacer8});
    }
}

std::u16string BuildHead(const Channel& channel, const NewsItem& item, const PageContext& context) {
    std::u16string head;
    Add(head, {kHtmlOpen});
    AppendCharset(head, channel.encoding(), kSectionCapacity);
    Add(head, {kBodyOpen, kTableOpen});
    AddBanner(head, channel, context);
    if (!item.title().isNull()) {
        Add(head, {kRowOpen, u"<b>", item.title().view(), u"</b>", u"<br>", kRowClose, kSpacer4});
    }
    Add(head, {kRowOpen});
    return head;
}

std::u16string BuildTail(const NewsItem& item) {
    std::u16string tail;
    Add(tail, {kRowClose, kSpacer8});
    const std::u16string date = item.date().FormatShortLocal(kFormattedCapacity);
    if (!date.empty()) {
        Add(tail, {kSpacer4, kRowOpen, kDateOpen, date, kDateClose, kRowClose});
    }
    Add(tail, {kPageClose});
    return tail;
}

} // namespace

std::optional<std::u16string> BuildStoryPage(const Channel& channel, const NewsItem& item,
                                             const PageContext& context) {
    if (item.description().isNull()) {
        return std::nullopt;
    }
    const std::u16string head = BuildHead(channel, item, context);
    const std::u16string tail = BuildTail(item);
    std::u16string page;
    page.reserve(head.size() + item.description().size() + tail.size());
    page += head;
    page += item.description().view();
    page += tail;
    return page;
}

} // namespace qf
