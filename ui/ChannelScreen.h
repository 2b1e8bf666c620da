#pragma once

#include "ui/DeviceFamily.h"

#include <QWidget>
#include <cstdint>
#include <memory>
#include <vector>

class QListView;

namespace qf {
class Channel;
class ChannelStore;
class NewsItem;
} // namespace qf

namespace qf::ui {

class HtmlView;
class NewsListModel;
class NewsRowDelegate;
class ProgressBar;

// One channel: its banner page over the list of its headlines, and the progress control while a
// refresh runs. Opening a headline asks the frame to show the story; Left and Right ask it for the
// previous and next channel.
class ChannelScreen : public QWidget {
    Q_OBJECT

public:
    ChannelScreen(QObject* frame, ChannelStore& store, DeviceFamily family, QWidget* parent);

    // Shows the channel with the store's sort and new-only filter.
    void ShowChannel(Channel* channel);
    // Builds the banner, fills the list and sorts it when a sort key is given. Showing the same
    // channel again keeps the selected story, or the selection's place when the story left.
    void ShowChannel(Channel* channel, int32_t sortKey, int32_t sortDirection, bool newOnly);
    void FillList(Channel* channel, bool newOnly);
    // A refresh replaced the shown channel's stories, `before` being the old ones: the list is
    // filled with the new ones, the selected story staying selected (the row in its place when
    // the story left) and an unselected list keeping its scroll position.
    void FollowRefresh(const std::vector<std::unique_ptr<NewsItem>>& before);
    void Sort(int32_t key, int32_t direction);
    // Repaints the story's row, or with `redrawOnly` false sets its text again.
    void UpdateRow(const NewsItem* item, bool redrawOnly);
    void SelectRow(const NewsItem* item);
    void RepaintList();

    NewsItem* SelectedItem() const;
    // The story of the row above or below the story's row; none at either end. For a story
    // without a row, with `fallBack`: the row above the selected row, or the selected row itself.
    NewsItem* PreviousStory(const NewsItem* item, bool fallBack) const;
    NewsItem* NextStory(const NewsItem* item, bool fallBack) const;

    Channel* channel() const { return channel_; }
    HtmlView* banner() const { return banner_; }
    QListView* list() const { return list_; }
    NewsListModel* model() const { return model_; }
    ProgressBar* progress() const { return progress_; }
    void ShowProgress(bool shown);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void LayOut();
    void ShowBanner();
    void OpenStory(int row);
    int SelectedRow() const;
    void SelectRowAt(int row);

    QObject* frame_;
    ChannelStore& store_;
    DeviceFamily family_;
    Channel* channel_ = nullptr;
    HtmlView* banner_;
    QListView* list_;
    NewsListModel* model_;
    NewsRowDelegate* delegate_;
    ProgressBar* progress_;
};

} // namespace qf::ui
