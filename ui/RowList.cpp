#include "ui/RowList.h"

#include <QListView>

namespace qf::ui {

void SetUpRowList(QListView* list, QAbstractItemModel* model, QAbstractItemDelegate* delegate) {
    list->setModel(model);
    list->setItemDelegate(delegate);
    list->setUniformItemSizes(true);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setFrameShape(QFrame::NoFrame);
}

} // namespace qf::ui
