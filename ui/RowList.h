#pragma once

class QAbstractItemDelegate;
class QAbstractItemModel;
class QListView;
class QPainter;
class QStyleOptionViewItem;

namespace qf::ui {

// The owner-drawn lists of the channels and channel screens: one selectable row at a time, all
// rows of one height, drawn edge to edge without a frame and never scrolled sideways. Whenever
// the list is filled its first row becomes current without being selected, so the row that Enter
// opens is the one drawn marked and the first Down moves on to the second row.
void SetUpRowList(QListView* list, QAbstractItemModel* model, QAbstractItemDelegate* delegate);

// Marks the current row of a list that has the keyboard focus with a dotted frame in the row's
// text colour, whatever the style would do (some draw it only after Tab).
void PaintCurrentRowFrame(QPainter* painter, const QStyleOptionViewItem& option);

} // namespace qf::ui
