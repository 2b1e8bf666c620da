#pragma once

#include <QWidget>

namespace qf {
class Channel;
class ChannelStore;
class NewsItem;
} // namespace qf

namespace qf::ui {

class HtmlView;
class ProgressBar;
class StoryPictures;

// One story as its page in an HTML view, with the progress control while a refresh runs.
class StoryScreen : public QWidget {
    Q_OBJECT

public:
    StoryScreen(QObject* frame, ChannelStore& store, QWidget* parent);

    // Shows the story; nothing happens when either is missing.
    void ShowStory(Channel* channel, NewsItem* item);
    // The same story as shown, now as the record a refresh put in place of the shown one; the
    // page stays as the reader left it.
    void FollowRefresh(NewsItem* item) { item_ = item; }
    // The story shown laid out again, its pictures asked for anew: the "show images" option
    // has changed. The reader stays where they were in it.
    void ShowPicturesAgain();
    // Lets go of the story, whose channel is going away, and empties the view.
    void Forget();
    Channel* channel() const { return channel_; }
    NewsItem* item() const { return item_; }

    HtmlView* view() const { return view_; }
    ProgressBar* progress() const { return progress_; }
    StoryPictures* pictures() const { return pictures_; }
    void ShowProgress(bool shown);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void LayOut();

    ChannelStore& store_;
    Channel* channel_ = nullptr;
    NewsItem* item_ = nullptr;
    HtmlView* view_;
    ProgressBar* progress_;
    StoryPictures* pictures_;
};

} // namespace qf::ui
