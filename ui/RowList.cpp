#include "ui/RowList.h"

#include <QEvent>
#include <QListView>

namespace qf::ui {

namespace {

// A row acts on a single tap. The second click of a double-click is dropped: the first has
// usually switched screens already, and the list would otherwise take the second as a fresh
// press on whatever row now lies under the pointer (opening a headline and marking it read).
class DoubleClickFilter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonDblClick) {
            return true;
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

void SetUpRowList(QListView* list, QAbstractItemModel* model, QAbstractItemDelegate* delegate) {
    list->setModel(model);
    list->setItemDelegate(delegate);
    list->setUniformItemSizes(true);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setFrameShape(QFrame::NoFrame);
    list->viewport()->installEventFilter(new DoubleClickFilter(list));
}

} // namespace qf::ui
