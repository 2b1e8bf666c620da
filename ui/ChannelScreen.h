#pragma once

#include "ui/DeviceFamily.h"

#include <QWidget>

class QListWidget;

namespace qf {
class Channel;
class ChannelStore;
} // namespace qf

namespace qf::ui {

class HtmlView;
class ProgressBar;

// One channel: its banner page over the list of its headlines, and the progress control while a
// refresh runs. Opening a headline asks the frame to show the story.
class ChannelScreen : public QWidget {
    Q_OBJECT

public:
    ChannelScreen(QObject* frame, ChannelStore& store, DeviceFamily family, QWidget* parent);

    void ShowChannel(Channel* channel);
    Channel* channel() const { return channel_; }

    HtmlView* banner() const { return banner_; }
    QListWidget* headlines() const { return headlines_; }
    ProgressBar* progress() const { return progress_; }
    void ShowProgress(bool shown);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void LayOut();
    void ShowBanner();
    void FillHeadlines();
    void OpenStory(int row);

    QObject* frame_;
    ChannelStore& store_;
    DeviceFamily family_;
    Channel* channel_ = nullptr;
    HtmlView* banner_;
    QListWidget* headlines_;
    ProgressBar* progress_;
};

} // namespace qf::ui
