#pragma once

#include "ui/DeviceFamily.h"

#include <QWidget>
#include <cstdint>

class QListView;

namespace qf {
class Channel;
class ChannelStore;
} // namespace qf

namespace qf::ui {

class ChannelListModel;
class ChannelRowDelegate;
class ProgressBar;

// The home screen: one row per channel with its state icon, title and counts, and the progress
// control along the bottom while a refresh runs. Activating a row or asking for its menu is told
// to the frame as a private message from the channels list.
class ChannelsScreen : public QWidget {
    Q_OBJECT

public:
    ChannelsScreen(QObject* frame, ChannelStore& store, DeviceFamily family, QWidget* parent);

    void FillList(int32_t categoryFilter, bool unreadOnly);
    // Redraws the channel's row, or with `redrawOnly` false sets its title and counts again.
    void UpdateRow(const Channel* channel, bool redrawOnly);
    void UpdateIcon(const Channel* channel);
    void SelectRow(const Channel* channel);
    void RemoveRow(const Channel* channel);

    Channel* SelectedChannel() const;
    // The channel of the row above or below the channel's row; none at either end. For a channel
    // without a row, with `fallBack`: the row above the selected row, or the selected row itself.
    Channel* PreviousChannel(const Channel* channel, bool fallBack) const;
    Channel* NextChannel(const Channel* channel, bool fallBack) const;
    // The channel's row in global coordinates; empty when it has none.
    QRect RowRectOnScreen(const Channel* channel) const;

    void ShowProgress(bool shown);
    bool progressShown() const;

    QListView* list() const { return list_; }
    ChannelListModel* model() const { return model_; }
    ProgressBar* progress() const { return progress_; }

    // Whether the count column shows the unread count alone: a Smartphone narrower than 240
    // pixels.
    bool unreadCountAlone() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void LayOut();

    QObject* frame_;
    const ChannelStore& store_;
    DeviceFamily family_;
    QListView* list_;
    ChannelListModel* model_;
    ChannelRowDelegate* delegate_;
    ProgressBar* progress_;
};

} // namespace qf::ui
