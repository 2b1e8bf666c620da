#include "ui/ChannelScreen.h"

#include "model/ChannelStore.h"
#include "render/ChannelPage.h"
#include "ui/CommandIds.h"
#include "ui/HtmlView.h"
#include "ui/PageContexts.h"
#include "ui/PrivateMessages.h"
#include "ui/ProgressBar.h"
#include "ui/RowTitle.h"

#include <QListWidget>
#include <QScrollBar>

namespace qf::ui {

ChannelScreen::ChannelScreen(QObject* frame, ChannelStore& store, DeviceFamily family,
                             QWidget* parent)
    : QWidget(parent), frame_(frame), store_(store), family_(family),
      banner_(new HtmlView(frame, kCtlChannelView, this)), headlines_(new QListWidget(this)),
      progress_(new ProgressBar(store, this)) {
    setObjectName(QStringLiteral("QFChannelWnd"));
    banner_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    banner_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    banner_->setFocusPolicy(Qt::NoFocus);
    headlines_->setFrameShape(QFrame::NoFrame);
    headlines_->setWordWrap(true);
    progress_->hide();
    setFocusProxy(headlines_);
    connect(headlines_, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { OpenStory(headlines_->row(item)); });
    connect(headlines_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { OpenStory(headlines_->row(item)); });
}

void ChannelScreen::ShowChannel(Channel* channel) {
    channel_ = channel;
    ShowBanner();
    FillHeadlines();
}

void ChannelScreen::ShowBanner() {
    if (channel_ == nullptr || banner_->height() <= 0) {
        return;
    }
    banner_->SetPage(BuildChannelPage(*channel_, banner_->width(), banner_->height(),
                                      family_.smartphone, PageContextFor(store_)),
                     true);
}

void ChannelScreen::FillHeadlines() {
    headlines_->clear();
    if (channel_ == nullptr) {
        return;
    }
    for (const auto& item : channel_->items()) {
        auto* row = new QListWidgetItem(QString::fromStdU16String(RowTitle(item->title().view())),
                                        headlines_);
        QFont font = row->font();
        font.setBold(!item->isRead());
        row->setFont(font);
    }
}

void ChannelScreen::OpenStory(int row) {
    if (channel_ == nullptr || row < 0 || row >= static_cast<int>(channel_->items().size())) {
        return;
    }
    auto event = std::make_unique<PrivateMessageEvent>(QFM_OPENSTORY);
    event->channel = channel_;
    event->item = channel_->items()[static_cast<std::size_t>(row)].get();
    PostPrivateMessage(frame_, std::move(event));
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
    headlines_->setGeometry(-1, bannerHeight, width() + 2,
                            height() - bannerHeight - progressHeight + 1);
    progress_->setGeometry(-1, height() - progressHeight, width() + 2, progressHeight);
}

} // namespace qf::ui
