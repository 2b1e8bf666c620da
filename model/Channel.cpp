#include "model/Channel.h"

#include "platform/StringTable.h"
#include "platform/Text.h"

#include <algorithm>
#include <limits>
#include <string>

namespace qf {

namespace {

// Separates a failure message from the time it happened; the channel screen splits there.
constexpr char16_t kStampSeparator = u'@';

int32_t ListSize(const Channel::ItemList& items) {
    return static_cast<int32_t>(
        std::min<std::size_t>(items.size(), std::numeric_limits<int32_t>::max()));
}

} // namespace

int32_t Channel::RecountItems() {
    itemCount_ = ListSize(items_);
    return itemCount_;
}

NewsItem* Channel::ItemAt(int32_t index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= items_.size()) {
        return nullptr;
    }
    return items_[static_cast<std::size_t>(index)].get();
}

void Channel::SetXmlUrl(const WString& xmlUrl) {
    if (xmlUrl.isNull()) {
        return;
    }
    if (xmlUrl_.isNull() || xmlUrl_.str() != xmlUrl.str()) {
        server_ = ServerState{};
    }
    xmlUrl_.set(xmlUrl);
}

void Channel::SetItemCount(int32_t count) {
    if (count >= 1) {
        itemCount_ = count;
    }
}

void Channel::SetNewItemCount(int32_t count) {
    if (count >= 0) {
        newItemCount_ = count;
    }
}

void Channel::SetErrorText(const WString& text, bool stamp) {
    if (text.isNull() || !stamp) {
        errorText_.set(text);
        return;
    }
    std::u16string stamped = text.str();
    stamped += kStampSeparator;
    stamped += FeedDate::NowUtc().FormatShortLocal();
    errorText_.set(stamped);
}

void Channel::SetErrorTextFromString(int stringId, bool stamp) {
    SetErrorText(WString(LoadString(stringId)), stamp);
}

void Channel::SetErrorTextWithCode(int stringId, int32_t code, bool stamp) {
    std::u16string text(LoadString(stringId));
    text += AsciiToUtf16(std::to_string(code));
    SetErrorText(WString(std::move(text)), stamp);
}

void Channel::AddItem(std::unique_ptr<NewsItem> item) {
    if (item) {
        items_.push_back(std::move(item));
    }
}

void Channel::Clear() {
    items_.clear();
    itemCount_ = 0;
    newItemCount_ = 0;
    matchCount_ = 0;
}

void Channel::CountItems() {
    const auto readCount = std::count_if(items_.begin(), items_.end(),
                                         [](const auto& item) { return item && item->isRead(); });
    const int32_t total = ListSize(items_);
    SetItemCount(total);
    SetNewItemCount(total - static_cast<int32_t>(readCount));
}

void Channel::CopyFrom(const Channel& source, bool withItems) {
    if (&source == this) {
        return;
    }
    SetTitle(source.title_);
    SetXmlUrl(source.xmlUrl_);
    SetId(source.id_);
    if (!withItems) {
        return;
    }
    Clear();
    items_.reserve(source.items_.size());
    for (const auto& item : source.items_) {
        if (item) {
            items_.push_back(std::make_unique<NewsItem>(*item));
        }
    }
}

} // namespace qf
