#include "ui/ChannelListModel.h"

#include "model/Channel.h"
#include "model/ChannelListOrder.h"
#include "model/ChannelStore.h"
#include "ui/QtText.h"
#include "ui/RowTitle.h"

#include <algorithm>

namespace qf::ui {

namespace {

// What a screen reader says after the counts: that the channel is being updated, or why its last
// update failed (the time of the failure follows the message, as the channel screen shows it).
QString StateInWords(const Channel& channel, int32_t state) {
    if (state == kChannelUpdating) {
        return QStringLiteral("updating");
    }
    if (state != kChannelFailed && channel.hasErrors() == 0) {
        return {};
    }
    QString error = ToQString(channel.errorText().view());
    const qsizetype at = error.indexOf(QLatin1Char('@'));
    if (at >= 0) {
        error.replace(at, 1, QStringLiteral(", "));
    }
    return error.isEmpty() ? QStringLiteral("update failed") : error;
}

} // namespace

void ChannelListModel::Fill(const ChannelStore& store, int32_t categoryFilter, bool unreadOnly) {
    beginResetModel();
    rows_.clear();
    for (Channel* channel : ChannelListOrder(store, categoryFilter, unreadOnly)) {
        rows_.push_back(MakeRow(channel));
    }
    endResetModel();
}

ChannelListModel::Row ChannelListModel::MakeRow(Channel* channel) {
    return {channel, ToQString(RowTitle(channel->title().view())), channel->newItemCount(),
            channel->itemCount(), channel->state()};
}

bool ChannelListModel::Refresh(const Channel* channel) {
    const int row = RowOf(channel);
    if (row < 0) {
        return false;
    }
    const int32_t icon = rows_[static_cast<std::size_t>(row)].icon;
    rows_[static_cast<std::size_t>(row)] = MakeRow(rows_[static_cast<std::size_t>(row)].channel);
    rows_[static_cast<std::size_t>(row)].icon = icon;
    emit dataChanged(index(row), index(row));
    return true;
}

bool ChannelListModel::RefreshIcon(const Channel* channel) {
    const int row = RowOf(channel);
    if (row < 0) {
        return false;
    }
    rows_[static_cast<std::size_t>(row)].icon = channel->state();
    emit dataChanged(index(row), index(row), {kIconRole, Qt::AccessibleDescriptionRole});
    return true;
}

void ChannelListModel::Remove(const Channel* channel) {
    const int row = RowOf(channel);
    if (row < 0) {
        return;
    }
    beginRemoveRows(QModelIndex(), row, row);
    rows_.erase(rows_.begin() + row);
    endRemoveRows();
}

int ChannelListModel::RowOf(const Channel* channel) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [channel](const Row& row) { return row.channel == channel; });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

Channel* ChannelListModel::ChannelAt(int row) const {
    return row >= 0 && row < rowCount() ? rows_[static_cast<std::size_t>(row)].channel : nullptr;
}

int ChannelListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ChannelListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return row.title;
    case Qt::AccessibleDescriptionRole:
        return Description(row);
    case kChannelRole:
        return QVariant::fromValue(static_cast<void*>(row.channel));
    case kIconRole:
        return row.icon;
    case kUnreadRole:
        return row.unread;
    case kTotalRole:
        return row.total;
    case kLiveUnreadRole:
        return row.channel->newItemCount();
    default:
        return {};
    }
}

QString ChannelListModel::Description(const Row& row) {
    const QString state = StateInWords(*row.channel, row.icon);
    const QString counts = CountsInWords(row.unread, row.total);
    return state.isEmpty() ? counts : counts + QStringLiteral(", ") + state;
}

QString CountsInWords(int32_t unread, int32_t total) {
    if (total == 0) {
        return QStringLiteral("no stories");
    }
    return QStringLiteral("%1 unread of %2 %3")
        .arg(unread)
        .arg(total)
        .arg(total == 1 ? QStringLiteral("story") : QStringLiteral("stories"));
}

QString CountText(int32_t unread, int32_t total, bool unreadAlone) {
    if (total == 0) {
        return {};
    }
    return unreadAlone ? QString::number(unread) : QStringLiteral("%1/%2").arg(unread).arg(total);
}

} // namespace qf::ui
