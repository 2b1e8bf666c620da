#pragma once

class QAbstractItemDelegate;
class QAbstractItemModel;
class QListView;

namespace qf::ui {

// The owner-drawn lists of the channels and channel screens: one selectable row at a time, all
// rows of one height, drawn edge to edge without a frame and never scrolled sideways.
void SetUpRowList(QListView* list, QAbstractItemModel* model, QAbstractItemDelegate* delegate);

} // namespace qf::ui
