#pragma once

#include <QPixmap>
#include <QStyledItemDelegate>
#include <functional>

namespace qf::ui {

// Paints a row of the news list: the story icon, the title (bold while unread) wrapped from the
// top, and the date in grey right-aligned on the second line, between grey separator lines. In
// message mode the one row shows the channel's error text: the part before the first "@" in red
// bold, the rest (the time of the failure) in grey on the right.
class NewsRowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    // `messageMode` answers whether the list shows the error row instead of stories.
    NewsRowDelegate(std::function<bool()> messageMode, QWidget* list);

    void LoadIcon(const QWidget* list);

    // The list's font made a little smaller, as the rows use it, and its bold form.
    static QFont NormalFont(const QFont& listFont);
    static QFont BoldFont(const QFont& listFont);
    // Two lines of the bold font (three for the message row) and its internal leading (the
    // height less the em size) once more; never less than the icon with a pixel above and below.
    int RowHeight(const QFont& listFont, bool messageMode) const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void PaintStory(QPainter* painter, const QStyleOptionViewItem& option,
                    const QModelIndex& index) const;
    void PaintMessage(QPainter* painter, const QStyleOptionViewItem& option,
                      const QModelIndex& index) const;

    std::function<bool()> messageMode_;
    QPixmap icon_;
    int iconSize_ = 16;
};

} // namespace qf::ui
