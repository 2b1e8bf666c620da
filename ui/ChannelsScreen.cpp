#include "ui/ChannelsScreen.h"

#include "model/ChannelStore.h"
#include "ui/ChannelListModel.h"
#include "ui/ChannelRowDelegate.h"
#include "ui/CommandIds.h"
#include "ui/PrivateMessages.h"
#include "ui/ProgressBar.h"
#include "ui/RowList.h"

#include <QKeyEvent>
#include <QListView>

namespace qf::ui {

namespace {

constexpr int kNarrowScreenWidth = 240;

} // namespace

ChannelsScreen::ChannelsScreen(QObject* frame, ChannelStore& store, DeviceFamily family,
                               QWidget* parent)
    : QWidget(parent), frame_(frame), store_(store), family_(family), list_(new QListView(this)),
      model_(new ChannelListModel(this)),
      delegate_(new ChannelRowDelegate(
          model_, [this] { return unreadCountAlone(); }, list_)),
      progress_(new ProgressBar(store, this)) {
    setObjectName(QStringLiteral("QFCategoryWnd"));
    list_->setObjectName(QString::number(kCtlChannelList));
    SetUpRowList(list_, model_, delegate_);
    list_->setAccessibleName(QStringLiteral("Channels"));
    list_->setContextMenuPolicy(Qt::CustomContextMenu);
    list_->installEventFilter(this);
    setFocusProxy(list_);
    progress_->hide();
    // A tap on a row opens its channel, as on the handheld.
    connect(list_, &QListView::clicked, this, [this](const QModelIndex& index) {
        if (index.isValid()) {
            PostControlMessage(frame_, QFM_ITEMACTIVATE, kCtlChannelList);
        }
    });
    connect(list_, &QListView::customContextMenuRequested, this, [this](const QPoint& at) {
        const QModelIndex index = list_->indexAt(at);
        if (index.isValid()) {
            list_->setCurrentIndex(index);
        }
        PostControlMessage(frame_, QFM_ITEMMENU, kCtlChannelList);
    });
}

bool ChannelsScreen::eventFilter(QObject* watched, QEvent* event) {
    if (watched == list_ && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const QModelIndex current = list_->currentIndex();
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && current.isValid()) {
            // The list makes its first row current when it gains focus without selecting it;
            // Enter opens the row the user sees marked.
            list_->selectionModel()->select(current, QItemSelectionModel::ClearAndSelect);
            PostControlMessage(frame_, QFM_ITEMACTIVATE, kCtlChannelList);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ChannelsScreen::FillList(int32_t categoryFilter, bool unreadOnly) {
    model_->Fill(store_, categoryFilter, unreadOnly);
}

void ChannelsScreen::UpdateRow(const Channel* channel, bool redrawOnly) {
    if (redrawOnly) {
        const int row = model_->RowOf(channel);
        if (row >= 0) {
            list_->update(model_->index(row));
        }
        return;
    }
    model_->Refresh(channel);
}

void ChannelsScreen::UpdateIcon(const Channel* channel) {
    model_->RefreshIcon(channel);
}

void ChannelsScreen::SelectRow(const Channel* channel) {
    const int row = model_->RowOf(channel);
    if (row >= 0) {
        list_->setCurrentIndex(model_->index(row));
    }
}

void ChannelsScreen::RemoveRow(const Channel* channel) {
    model_->Remove(channel);
}

Channel* ChannelsScreen::SelectedChannel() const {
    const QModelIndexList selected = list_->selectionModel()->selectedIndexes();
    return selected.isEmpty() ? nullptr : model_->ChannelAt(selected.first().row());
}

Channel* ChannelsScreen::PreviousChannel(const Channel* channel, bool fallBack) const {
    int row = model_->RowOf(channel);
    if (row < 0) {
        if (!fallBack) {
            return nullptr;
        }
        const QModelIndexList selected = list_->selectionModel()->selectedIndexes();
        row = selected.isEmpty() ? -1 : selected.first().row();
    }
    return row > 0 ? model_->ChannelAt(row - 1) : nullptr;
}

Channel* ChannelsScreen::NextChannel(const Channel* channel, bool fallBack) const {
    const int row = model_->RowOf(channel);
    if (row < 0) {
        if (!fallBack) {
            return nullptr;
        }
        const QModelIndexList selected = list_->selectionModel()->selectedIndexes();
        return selected.isEmpty() ? nullptr : model_->ChannelAt(selected.first().row());
    }
    return model_->ChannelAt(row + 1);
}

QRect ChannelsScreen::RowRectOnScreen(const Channel* channel) const {
    const int row = model_->RowOf(channel);
    if (row < 0) {
        return {};
    }
    const QRect rect = list_->visualRect(model_->index(row));
    return QRect(list_->viewport()->mapToGlobal(rect.topLeft()), rect.size());
}

void ChannelsScreen::ShowProgress(bool shown) {
    progress_->setVisible(shown);
    LayOut();
}

bool ChannelsScreen::progressShown() const {
    return !progress_->isHidden();
}

bool ChannelsScreen::unreadCountAlone() const {
    return family_.smartphone && width() < kNarrowScreenWidth;
}

void ChannelsScreen::resizeEvent(QResizeEvent*) {
    LayOut();
}

void ChannelsScreen::LayOut() {
    const int progressHeight = progressShown() ? progress_->PreferredHeight() : 0;
    list_->setGeometry(0, 0, width(), height() - progressHeight);
    progress_->setGeometry(0, height() - progressHeight, width(), progressHeight);
}

} // namespace qf::ui
