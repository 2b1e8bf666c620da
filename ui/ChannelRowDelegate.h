#pragma once

#include <QFont>
#include <QPixmap>
#include <QStyledItemDelegate>
#include <array>
#include <functional>

class QFontMetrics;

namespace qf::ui {

class ChannelListModel;

// Paints a row of the channels list: the icon of the channel's state, the title (bold while the
// channel has unread stories) and the count text centred in its own column on the right.
class ChannelRowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    // `unreadAlone` answers whether the count column shows the unread count alone (a Smartphone
    // narrower than 240 pixels).
    ChannelRowDelegate(const ChannelListModel* model, std::function<bool()> unreadAlone,
                       QWidget* list);

    // The state icons (idle, being updated, failed) for the list's font and screen.
    void LoadIcons(const QWidget* list);

    // The width of the count column in the bold font: the sample "XXX/XXX" ("XXX" when the
    // unread count stands alone), or the widest count of the list with half an "x" either side
    // when that is wider, so that no count is cut.
    int CountWidth(const QFont& listFont) const;
    // The widest count of the rows first..last, with room either side; 0 for no rows.
    int WidestCount(const QFontMetrics& bold, int first, int last) const;
    int RowHeight(const QFont& listFont) const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const ChannelListModel* model_;
    std::function<bool()> unreadAlone_;
    // The count column's width as last measured, for this font and count form; -1 once the rows
    // have changed.
    mutable int countWidth_ = -1;
    mutable QFont countFont_;
    mutable bool countAlone_ = false;
    std::array<QPixmap, 3> icons_;
    int iconSize_ = 16;
};

} // namespace qf::ui
