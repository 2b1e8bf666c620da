#pragma once

#include <QAbstractListModel>
#include <cstdint>
#include <vector>

namespace qf {
class Channel;
class NewsItem;
} // namespace qf

namespace qf::ui {

// The sort parameter of the news list: the key in the low 16 bits, the direction above them.
int32_t NewsSortParameter(int32_t key, int32_t direction);

// Orders two stories for the news list: negative when `a` goes first, positive when `b` does, 0
// when the order does not matter. Key 1 sorts by date (direction 0 newest first, 1 oldest first),
// key 2 by status (direction 0 read stories first, otherwise unread first); any other key, a
// missing story or an unknown date direction gives 0.
int CompareNews(const NewsItem* a, const NewsItem* b, int32_t parameter);

// The rows of a channel's news list: one per story shown, in the channel's stored order until
// sorted, or a single message row with the channel's error text when its last update failed. A
// screen reader hears a story's title as the row's name and its date and "unread" (while it is)
// as the description; the message row's name is the error and its description the time of it.
class NewsListModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        kItemRole = Qt::UserRole + 1,
        kReadRole,
        kDateRole,
    };

    using QAbstractListModel::QAbstractListModel;

    // Refills the rows from the channel; with `newOnly` read stories are left out. No channel
    // leaves the list empty.
    void Fill(const Channel* channel, bool newOnly);
    void Sort(int32_t key, int32_t direction);
    // Sets the row's text again from its story's title; false when the story has no row.
    bool Refresh(const NewsItem* item);

    bool messageMode() const { return messageMode_; }
    // The row of a story; -1 when it has none.
    int RowOf(const NewsItem* item) const;
    NewsItem* ItemAt(int row) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    struct Row {
        NewsItem* item = nullptr;
        QString text;
    };

    QString Description(const Row& row) const;

    std::vector<Row> rows_;
    bool messageMode_ = false;
};

} // namespace qf::ui
