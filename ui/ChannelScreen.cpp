#include "ui/ChannelScreen.h"

#include "model/ChannelStore.h"
#include "parse/ReadState.h"
#include "render/ChannelPage.h"
#include "ui/CommandIds.h"
#include "ui/HtmlView.h"
#include "ui/NewsListModel.h"
#include "ui/NewsRowDelegate.h"
#include "ui/PageContexts.h"
#include "ui/PrivateMessages.h"
#include "ui/ProgressBar.h"
#include "ui/QtText.h"
#include "ui/RowList.h"

#include <QKeyEvent>
#include <QListView>
#include <QScrollBar>

namespace qf::ui {

ChannelScreen::ChannelScreen(QObject* frame, ChannelStore& store, DeviceFamily family,
                             QWidget* parent)
    : QWidget(parent), frame_(frame), store_(store), family_(family),
      banner_(new HtmlView(frame, kCtlChannelView, this)), list_(new QListView(this)),
      model_(new NewsListModel(this)),
      delegate_(new NewsRowDelegate([this] { return model_->messageMode(); }, list_)),
      progress_(new ProgressBar(store, this)) {
    setObjectName(QStringLiteral("QFChannelWnd"));
    banner_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    banner_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    banner_->setFocusPolicy(Qt::NoFocus);
    SetUpRowList(list_, model_, delegate_);
    list_->setAccessibleName(QStringLiteral("Headlines"));
    list_->installEventFilter(this);
    progress_->hide();
    setFocusProxy(list_);
    // A tap on a headline opens its story, as on the handheld.
    connect(list_, &QListView::clicked, this,
            [this](const QModelIndex& index) { OpenStory(index.row()); });
}

void ChannelScreen::ShowChannel(Channel* channel) {
    ShowChannel(channel, store_.sortBy(), store_.sortOrder(), store_.newHeadlines() != 0);
}

void ChannelScreen::ShowChannel(Channel* channel, int32_t sortKey, int32_t sortDirection,
                                bool newOnly) {
    const bool same = channel != nullptr && channel == channel_;
    const NewsItem* selected = same ? SelectedItem() : nullptr;
    const int selectedRow = same ? SelectedRow() : -1;
    channel_ = channel;
    ShowBanner();
    FillList(channel, newOnly);
    if (sortKey != kSortNone) {
        Sort(sortKey, sortDirection);
    }
    if (selected != nullptr) {
        // When the story left the list, the row that took its place is selected, so that the
        // next story is the selected one and the previous the one above it; after the last row
        // there is neither.
        const int row = model_->RowOf(selected);
        SelectRowAt(row >= 0 ? row : selectedRow);
    }
}

void ChannelScreen::FollowRefresh(const std::vector<std::unique_ptr<NewsItem>>& before) {
    if (channel_ == nullptr) {
        return;
    }
    const NewsItem* selected = SelectedItem();
    const int scrolled = list_->verticalScrollBar()->value();
    ShowChannel(channel_);
    if (selected == nullptr) {
        list_->verticalScrollBar()->setValue(scrolled);
    } else if (const NewsItem* same = SameStory(before, *selected, channel_->items())) {
        SelectRow(same);
    }
}

void ChannelScreen::ShowBanner() {
    banner_->setAccessibleName(channel_ == nullptr ? QString()
                                                   : PlainTextOfHtml(channel_->title().view()));
    if (channel_ == nullptr) {
        banner_->SetPage(std::nullopt, true);
        return;
    }
    if (banner_->height() <= 0 || banner_->width() <= 0) {
        return;
    }
    banner_->SetPage(BuildChannelPage(*channel_, banner_->width(), banner_->height(),
                                      family_.smartphone, PageContextFor(store_)),
                     true);
}

void ChannelScreen::FillList(Channel* channel, bool newOnly) {
    model_->Fill(channel, newOnly);
    list_->scrollToTop();
}

void ChannelScreen::Sort(int32_t key, int32_t direction) {
    model_->Sort(key, direction);
}

void ChannelScreen::UpdateRow(const NewsItem* item, bool redrawOnly) {
    if (!redrawOnly) {
        model_->Refresh(item);
        return;
    }
    const int row = model_->RowOf(item);
    if (row >= 0) {
        list_->update(model_->index(row));
    }
}

void ChannelScreen::SelectRow(const NewsItem* item) {
    const int row = model_->RowOf(item);
    if (row >= 0) {
        SelectRowAt(row);
    }
}

void ChannelScreen::SelectRowAt(int row) {
    if (row < 0 || row >= model_->rowCount()) {
        return;
    }
    const QModelIndex index = model_->index(row);
    list_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    list_->scrollTo(index);
}

void ChannelScreen::RepaintList() {
    list_->viewport()->update();
}

int ChannelScreen::SelectedRow() const {
    const QModelIndexList selected = list_->selectionModel()->selectedIndexes();
    return selected.isEmpty() ? -1 : selected.first().row();
}

NewsItem* ChannelScreen::SelectedItem() const {
    return model_->ItemAt(SelectedRow());
}

NewsItem* ChannelScreen::PreviousStory(const NewsItem* item, bool fallBack) const {
    int row = model_->RowOf(item);
    if (row < 0) {
        if (!fallBack) {
            return nullptr;
        }
        row = SelectedRow();
    }
    return row > 0 ? model_->ItemAt(row - 1) : nullptr;
}

NewsItem* ChannelScreen::NextStory(const NewsItem* item, bool fallBack) const {
    const int row = model_->RowOf(item);
    if (row < 0) {
        return fallBack ? model_->ItemAt(SelectedRow()) : nullptr;
    }
    return model_->ItemAt(row + 1);
}

void ChannelScreen::OpenStory(int row) {
    NewsItem* item = model_->ItemAt(row);
    if (channel_ == nullptr || item == nullptr) {
        return;
    }
    auto event = std::make_unique<PrivateMessageEvent>(QFM_OPENSTORY);
    event->channel = channel_;
    event->item = item;
    PostPrivateMessage(frame_, std::move(event));
}

bool ChannelScreen::eventFilter(QObject* watched, QEvent* event) {
    if (watched != list_ || event->type() != QEvent::KeyPress) {
        return QWidget::eventFilter(watched, event);
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->modifiers() != Qt::NoModifier && key->modifiers() != Qt::KeypadModifier) {
        return QWidget::eventFilter(watched, event);
    }
    switch (key->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        // The list makes a row current when it gains focus without selecting it; Enter opens
        // the row the user sees marked.
        if (const QModelIndex current = list_->currentIndex(); current.isValid()) {
            SelectRowAt(current.row());
            OpenStory(current.row());
        }
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
        PostControlMessage(frame_, key->key() == Qt::Key_Left ? QFM_NAVPREVIOUS : QFM_NAVNEXT,
                           kCtlChannelView);
        return true;
    default:
        return QWidget::eventFilter(watched, event);
    }
}

void ChannelScreen::ShowProgress(bool shown) {
    progress_->setVisible(shown);
    LayOut();
}

void ChannelScreen::resizeEvent(QResizeEvent*) {
    LayOut();
    ShowBanner();
}

void ChannelScreen::LayOut() {
    const int bannerHeight = BannerHeight(height());
    const int progressHeight = progress_->isHidden() ? 0 : progress_->PreferredHeight();
    banner_->setGeometry(0, 0, width(), bannerHeight);
    list_->setGeometry(-1, bannerHeight, width() + 2, height() - bannerHeight - progressHeight + 1);
    progress_->setGeometry(-1, height() - progressHeight, width() + 2, progressHeight);
}

} // namespace qf::ui
