#pragma once

#include <QAbstractListModel>
#include <cstdint>
#include <vector>

namespace qf {
class Channel;
class ChannelStore;
} // namespace qf

namespace qf::ui {

// The rows of the channels list: one per channel, each with the title and counts it was given
// when it was inserted or last updated, and the icon of the channel's state. A screen reader
// hears the title as the row's name and the counts and state in words as its description.
class ChannelListModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        kChannelRole = Qt::UserRole + 1,
        kIconRole,
        kUnreadRole,
        kTotalRole,
        // The channel's unread count as it is now, not as the row was last set.
        kLiveUnreadRole,
    };

    using QAbstractListModel::QAbstractListModel;

    // Refills the list from the store: every category, or only the one at `categoryFilter`
    // (-1 for all), and with `unreadOnly` only channels with unread stories, in the order of
    // ChannelListOrder.
    void Fill(const ChannelStore& store, int32_t categoryFilter, bool unreadOnly);

    // Sets the row's title and counts again from its channel; false when it has no row.
    bool Refresh(const Channel* channel);
    // Sets the row's icon to its channel's state; false when it has no row.
    bool RefreshIcon(const Channel* channel);
    // Removes the channel's row.
    void Remove(const Channel* channel);

    // The row of a channel; -1 when it has none.
    int RowOf(const Channel* channel) const;
    Channel* ChannelAt(int row) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    struct Row {
        Channel* channel = nullptr;
        QString title;
        int32_t unread = 0;
        int32_t total = 0;
        int32_t icon = 0;
    };

    static Row MakeRow(Channel* channel);
    static QString Description(const Row& row);

    std::vector<Row> rows_;
};

// The count text of a row: nothing with no stories, else "unread/total", or the unread count
// alone on a narrow Smartphone screen.
QString CountText(int32_t unread, int32_t total, bool unreadAlone);
// The counts as a screen reader says them: "3 unread of 12 stories", "1 unread of 1 story", or
// "no stories".
QString CountsInWords(int32_t unread, int32_t total);

} // namespace qf::ui
