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

void ReadEntry(Channel& channel, XmlNode entryElement, int32_t codePage) {
    auto item = std::make_unique<NewsItem>();
    item->SetCodePage(codePage);
    ReadStateOf(entryElement, *item);
    for (const XmlNode child : entryElement.children()) {
        switch (FieldOf(child.name(), kEntryFields, EntryField::kNone)) {
        case EntryField::kTitle:
            item->SetTitle(WString(child.text()));
            break;
        case EntryField::kLink: // of several page links the last one wins
            if (auto href = HtmlLinkHref(child)) {
                item->SetLink(WString(std::move(*href)));
            }
            break;
        case EntryField::kId: // kept to tell linkless entries apart, never used as their link
            item->SetGuid(WString(child.text()));
            break;
        case EntryField::kUpdated:
            item->SetDate(DateOf(child.text()));
            break;
        case EntryField::kContent:
            item->SetDescription(WString(child.text()));
            break;
        case EntryField::kNone:
            break;
        }
    }
    channel.AddItem(std::move(item));
}

} // namespace

bool ParseAtom(Channel& channel, bool takeTitle, XmlNode rootElement, int32_t codePage) {
    for (const XmlNode child : rootElement.children()) {
        switch (FieldOf(child.name(), kFeedFields, FeedField::kNone)) {
        case FeedField::kTitle:
            if (takeTitle) {
                channel.SetTitle(WString(child.text()));
            }
            break;
        case FeedField::kUpdated:
            channel.SetLastBuildDate(DateOf(child.text()));
            break;
        case FeedField::kIcon:
            SetImageAddress(channel, child.text());
            break;
        case FeedField::kEntry:
            ReadEntry(channel, child, codePage);
            break;
        case FeedField::kNone:
            break;
        }
    }
    return true;
}

} // namespace qf
