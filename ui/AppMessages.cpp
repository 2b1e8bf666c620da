#include "model/CachedFileNames.h"
#include "model/DataFolder.h"
#include "net/BrowserLink.h"
#include "net/RefreshEngine.h"
#include "platform/Files.h"
#include "store/CachedFeeds.h"
#include "ui/App.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/MainWindow.h"
#include "ui/PrivateMessages.h"
#include "ui/StoryScreen.h"
#include "ui/WaitCursor.h"

#include <QMenu>

namespace qf::ui {

void App::OnPrivateMessage(PrivateMessageEvent& event) {
    const bool fromChannelList = event.sourceControl == kCtlChannelList;
    switch (event.message()) {
    case QFM_OPENCHANNEL:
        OpenChannel(channelsScreen_->SelectedChannel());
        break;
    case QFM_OPENSTORY:
        ShowStory(event.channel, event.item);
        break;
    case QFM_LEAVEWELCOME:
        LeaveWelcome(kCmdContinue);
        break;
    case QFM_ITEMACTIVATE:
        if (fromChannelList) {
            OpenChannel(channelsScreen_->SelectedChannel());
        }
        break;
    case QFM_ITEMMENU:
        if (fromChannelList) {
            ShowChannelMenu();
        }
        break;
    case QFM_NAVPREVIOUS:
    case QFM_NAVNEXT: {
        const bool next = event.message() == QFM_NAVNEXT;
        if (event.sourceControl == kCtlChannelView) {
            StepChannel(next ? kCmdNextChannel : kCmdPreviousChannel);
        } else if (event.sourceControl == kCtlStoryView) {
            StepStory(next);
        }
        break;
    }
    case QFM_REFRESHDONE:
        if (event.channel != nullptr && event.completion) {
            event.completion(*event.channel);
        }
        break;
    case kHandOverEvent:
        handOvers_.RunNext();
        break;
    }
}

void App::OpenChannel(Channel* channel) {
    if (channel == nullptr || channel->state() == kChannelUpdating) {
        return;
    }
    const WString cacheFile =
        channel->cacheFile().isNull() ? WString(FeedFileName(channel->id())) : channel->cacheFile();
    const auto path = DataFilePath(volume(), cacheFile);
    if (!path || !FileExists(*path)) {
        engine_->StartChannelUpdate(*channel, 0, true,
                                    [this](Channel& updated) { ShowChannel(&updated); });
        return;
    }
    if (channel->items().empty()) {
        WaitCursor wait;
        LoadCachedFeed(*channel, volume());
    }
    ShowChannel(channel);
}

void App::ShowChannel(Channel* channel) {
    channelScreen_->ShowChannel(channel);
    SetScreen(kChannelScreen);
}

void App::ShowStory(Channel* channel, NewsItem* item) {
    if (channel == nullptr || item == nullptr) {
        return;
    }
    // A refresh may have replaced the story since the tap; the read mark goes to the live one.
    item = LiveStory(*channel, item);
    if (item == nullptr) {
        return;
    }
    WaitCursor wait;
    const bool wasUnread = !item->isRead();
    if (wasUnread) {
        item->SetRead(1);
        channel->SetNewItemCount(channel->newItemCount() - 1);
        channel->SetModified(true);
    }
    storyScreen_->ShowStory(channel, item);
    shownRetiredStory_.reset();
    SetScreen(kStoryScreen);
    if (channelScreen_->channel() == channel) {
        // Back returns to the story's row, and the next story follows from it even when the
        // new-only filter takes the row away.
        channelScreen_->SelectRow(item);
    }
    if (wasUnread) {
        if (store_.newHeadlines() != 0 && channelScreen_->channel() == channel) {
            channelScreen_->ShowChannel(channel);
        } else {
            channelScreen_->UpdateRow(item, true);
        }
        channelsScreen_->UpdateRow(channel, false);
    }
}

void App::StepStory(bool next) {
    Channel* channel = storyScreen_->channel();
    const NewsItem* shown = storyScreen_->item();
    if (channel == nullptr || channelScreen_->channel() != channel) {
        return;
    }
    NewsItem* step =
        next ? channelScreen_->NextStory(shown, true) : channelScreen_->PreviousStory(shown, true);
    if (step != nullptr) {
        ShowStory(channel, step);
    }
}

void App::ShowChannelMenu() {
    const Channel* selected = channelsScreen_->SelectedChannel();
    if (selected == nullptr) {
        return;
    }
    const QRect row = channelsScreen_->RowRectOnScreen(selected);
    contextMenu_->popup(row.bottomLeft());
}

void App::OpenLink(const QString& target) {
    if (target.isEmpty()) {
        return;
    }
    if (const auto address = LinkForBrowser(WString(target.toStdU16String()))) {
        HideForBrowser();
        dialogs_.open(QUrl(QString::fromStdU16String(*address)));
    }
}

} // namespace qf::ui
