#include "ui/RowList.h"

#include <QEvent>
#include <QListView>
#include <QPainter>
#include <QStyleOptionViewItem>

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
    QObject::connect(model, &QAbstractItemModel::modelReset, list, [list, model] {
        if (model->rowCount() > 0) {
            list->selectionModel()->setCurrentIndex(model->index(0, 0),
                                                    QItemSelectionModel::NoUpdate);
        }
    });
}

void PaintCurrentRowFrame(QPainter* painter, const QStyleOptionViewItem& option) {
    if (!option.state.testFlag(QStyle::State_HasFocus)) {
        return;
    }
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setPen(
        QPen(selected ? option.palette.highlightedText().color() : option.palette.text().color(), 0,
             Qt::DotLine));
    painter->setBrush(Qt::NoBrush);
    // One pixel in, clear of the separator lines that the news rows draw along their edges.
    painter->drawRect(option.rect.adjusted(1, 1, -2, -2));
    painter->restore();
}

} // namespace qf::ui
