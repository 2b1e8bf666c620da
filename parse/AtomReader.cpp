#include "parse/AtomReader.h"

#include "model/Channel.h"
#include "parse/FeedElements.h"

#include <memory>

namespace qf {

namespace {

enum class FeedField { kNone, kTitle, kUpdated, kIcon, kEntry };
constexpr std::array<FieldName<FeedField>, 4> kFeedFields = {{
    {u"title", FeedField::kTitle},
    {u"updated", FeedField::kUpdated},
    {u"icon", FeedField::kIcon},
    {u"entry", FeedField::kEntry},
}};

enum class EntryField { kNone, kTitle, kLink, kId, kUpdated, kContent };
constexpr std::array<FieldName<EntryField>, 5> kEntryFields = {{
    {u"title", EntryField::kTitle},
    {u"link", EntryField::kLink},
    {u"id", EntryField::kId},
    {u"updated", EntryField::kUpdated},
    {u"content", EntryField::kContent},
}};

void ReadEntry(const XmlDocument& document, Channel& channel, XmlNode entryElement) {
    auto item = std::make_unique<NewsItem>();
    item->SetCodePage(document.codePage());
    ReadStateOf(document, entryElement, *item);
    ForEachChild(document, entryElement, [&](XmlNode child) {
        std::u16string href;
        switch (FieldOf(document.NodeName(child), kEntryFields, EntryField::kNone)) {
        case EntryField::kTitle:
            item->SetTitle(WString(document.GetText(child)));
            break;
        case EntryField::kLink: // of several page links the last one wins
            if (HtmlLinkHref(document, child, href)) {
                item->SetLink(WString(std::move(href)));
            }
            break;
        case EntryField::kId: // kept to tell linkless entries apart, never used as their link
            item->SetGuid(WString(document.GetText(child)));
            break;
        case EntryField::kUpdated:
            item->SetDate(DateOf(document.GetText(child)));
            break;
        case EntryField::kContent:
            item->SetDescription(WString(document.GetText(child)));
            break;
        case EntryField::kNone:
            break;
        }
    });
    channel.AddItem(std::move(item));
}

} // namespace

bool ParseAtom(XmlDocument& document, Channel& channel, bool takeTitle, XmlNode rootElement) {
    ForEachChild(document, rootElement, [&](XmlNode child) {
        switch (FieldOf(document.NodeName(child), kFeedFields, FeedField::kNone)) {
        case FeedField::kTitle:
            if (takeTitle) {
                channel.SetTitle(WString(document.GetText(child)));
            }
            break;
        case FeedField::kUpdated:
            channel.SetLastBuildDate(DateOf(document.GetText(child)));
            break;
        case FeedField::kIcon:
            SetImageAddress(channel, document.GetText(child));
            break;
        case FeedField::kEntry:
            ReadEntry(document, channel, child);
            break;
        case FeedField::kNone:
            break;
        }
    });
    return true;
}

} // namespace qf
