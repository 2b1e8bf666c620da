#include "ui/NewsListModel.h"

#include "model/Channel.h"
#include "model/ChannelStore.h"
#include "model/NewsItem.h"
#include "ui/QtText.h"
#include "ui/RowTitle.h"

#include <algorithm>

namespace qf::ui {

namespace {

constexpr int32_t kDirectionShift = 16;
constexpr int32_t kKeyMask = 0xFFFF;
constexpr int32_t kDescending = 0;
constexpr int32_t kAscending = 1;

int CompareDates(const NewsItem& a, const NewsItem& b, int32_t direction) {
    const auto first = static_cast<uint64_t>(a.date().Ticks());
    const auto second = static_cast<uint64_t>(b.date().Ticks());
    if (first == second) {
        return 0;
    }
    if (direction == kDescending) {
        return first > second ? -1 : 1;
    }
    if (direction == kAscending) {
        return first < second ? -1 : 1;
    }
    return 0;
}

int CompareStatus(const NewsItem& a, const NewsItem& b, int32_t direction) {
    if (a.read() == b.read()) {
        return 0;
    }
    if (direction == kDescending) {
        return a.read() != 0 ? -1 : 1;
    }
    return a.read() == 0 ? -1 : 1;
}

} // namespace

int32_t NewsSortParameter(int32_t key, int32_t direction) {
    return (key & kKeyMask) | (direction << kDirectionShift);
}

int CompareNews(const NewsItem* a, const NewsItem* b, int32_t parameter) {
    const int32_t key = parameter & kKeyMask;
    const int32_t direction = parameter >> kDirectionShift;
    if (a == nullptr || b == nullptr) {
        return 0;
    }
    switch (key) {
    case kSortByDate:
        return CompareDates(*a, *b, direction);
    case kSortByStatus:
        return CompareStatus(*a, *b, direction);
    default:
        return 0;
    }
}

void NewsListModel::Fill(const Channel* channel, bool newOnly) {
    beginResetModel();
    rows_.clear();
    messageMode_ = channel != nullptr && channel->hasErrors() != 0;
    if (messageMode_) {
        rows_.push_back({nullptr, ToQString(channel->errorText().view())});
    } else if (channel != nullptr) {
        for (const auto& item : channel->items()) {
            if (!item || (newOnly && item->read() != 0)) {
                continue;
            }
            rows_.push_back({item.get(), ToQString(RowTitle(item->title().view()))});
        }
    }
    endResetModel();
}

void NewsListModel::Sort(int32_t key, int32_t direction) {
    const int32_t parameter = NewsSortParameter(key, direction);
    if (messageMode_ || (parameter & kKeyMask) == kSortNone) {
        return;
    }
    emit layoutAboutToBeChanged();
    std::stable_sort(rows_.begin(), rows_.end(), [parameter](const Row& a, const Row& b) {
        return CompareNews(a.item, b.item, parameter) < 0;
    });
    emit layoutChanged();
}

bool NewsListModel::Refresh(const NewsItem* item) {
    const int row = RowOf(item);
    if (row < 0) {
        return false;
    }
    rows_[static_cast<std::size_t>(row)].text = ToQString(RowTitle(item->title().view()));
    emit dataChanged(index(row), index(row));
    return true;
}

int NewsListModel::RowOf(const NewsItem* item) const {
    if (item == nullptr) {
        return -1;
    }
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [item](const Row& row) { return row.item == item; });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

NewsItem* NewsListModel::ItemAt(int row) const {
    return row >= 0 && row < rowCount() ? rows_[static_cast<std::size_t>(row)].item : nullptr;
}

int NewsListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant NewsListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return row.text;
    case Qt::AccessibleTextRole:
        return messageMode_ ? row.text.section(QLatin1Char('@'), 0, 0) : row.text;
    case Qt::AccessibleDescriptionRole:
        return Description(row);
    case kItemRole:
        return QVariant::fromValue(static_cast<void*>(row.item));
    case kReadRole:
        return row.item != nullptr && row.item->read() == 1;
    case kDateRole:
        return row.item == nullptr ? QString() : ToQString(row.item->date().FormatShortLocal());
    default:
        return {};
    }
}

QString NewsListModel::Description(const Row& row) const {
    if (messageMode_) {
        // The time of the failure, which the row shows apart from the message.
        return row.text.section(QLatin1Char('@'), 1);
    }
    QStringList parts;
    if (const QString date = ToQString(row.item->date().FormatShortLocal()); !date.isEmpty()) {
        parts << date;
    }
    if (row.item->read() != 1) {
        parts << QStringLiteral("unread");
    }
    return parts.join(QStringLiteral(", "));
}

} // namespace qf::ui
