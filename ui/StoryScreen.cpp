#include "ui/StoryScreen.h"

#include "model/ChannelStore.h"
#include "model/NewsItem.h"
#include "render/StoryPage.h"
#include "ui/CommandIds.h"
#include "ui/HtmlView.h"
#include "ui/PageContexts.h"
#include "ui/ProgressBar.h"
#include "ui/QtText.h"
#include "ui/StoryPictures.h"

namespace qf::ui {

namespace {

// What the story's relative pictures and links are resolved against: its own link, when that is
// an http(s) address, and nothing otherwise.
QUrl BaseOf(const NewsItem& item) {
    const QUrl link(ToQString(item.link().str()));
    const QString scheme = link.scheme().toLower();
    const bool web = scheme == QLatin1String("http") || scheme == QLatin1String("https");
    return web && link.isValid() && !link.host().isEmpty() ? link : QUrl();
}

} // namespace

StoryScreen::StoryScreen(QObject* frame, ChannelStore& store, QWidget* parent)
    : QWidget(parent), store_(store), view_(new HtmlView(frame, kCtlStoryView, this)),
      progress_(new ProgressBar(store, this)), pictures_(new StoryPictures(store, *view_)) {
    setObjectName(QStringLiteral("QFRssItemWnd"));
    view_->setObjectName(QString::number(kCtlStoryView));
    view_->setAccessibleName(QStringLiteral("Story"));
    progress_->hide();
    setFocusProxy(view_);
}

void StoryScreen::ShowStory(Channel* channel, NewsItem* item) {
    if (channel == nullptr || item == nullptr) {
        return;
    }
    channel_ = channel;
    item_ = item;
    pictures_->BeginShowing();
    const QString title = PlainTextOfHtml(item->title().view());
    view_->setAccessibleName(title.isEmpty() ? QStringLiteral("Story") : title);
    view_->SetPage(BuildStoryPage(*channel, *item, PageContextFor(store_)), true, BaseOf(*item));
}

void StoryScreen::ShowPicturesAgain() {
    pictures_->BeginShowing();
    view_->ShowPageAgain();
}

void StoryScreen::Forget() {
    channel_ = nullptr;
    item_ = nullptr;
    pictures_->BeginShowing();
    view_->setAccessibleName(QStringLiteral("Story"));
    view_->SetPage(std::nullopt, true);
}

void StoryScreen::ShowProgress(bool shown) {
    progress_->setVisible(shown);
    LayOut();
}

void StoryScreen::resizeEvent(QResizeEvent*) {
    LayOut();
}

void StoryScreen::LayOut() {
    const int progressHeight = progress_->isHidden() ? 0 : progress_->PreferredHeight();
    view_->setGeometry(0, 0, width(), height() - progressHeight);
    progress_->setGeometry(-1, height() - progressHeight, width() + 2, progressHeight);
}

} // namespace qf::ui
