#include "ui/AppNavigation.h"

#include "model/CachedFileNames.h"
#include "model/ChannelStore.h"
#include "model/DataFolder.h"
#include "net/BrowserLink.h"
#include "net/RefreshEngine.h"
#include "platform/Files.h"
#include "store/CachedFeeds.h"
#include "ui/AppDialogs.h"
#include "ui/AppRefresh.h"
#include "ui/AppScreens.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/QtText.h"
#include "ui/StoryScreen.h"
#include "ui/WaitCursor.h"

namespace qf::ui {

AppNavigation::AppNavigation(ChannelStore& store, AppScreens& screens, AppRefresh& refresh,
                             RefreshEngine& engine, const AppDialogs& dialogs)
    : store_(store), screens_(screens), refresh_(refresh), engine_(engine), dialogs_(dialogs) {}

std::u16string_view AppNavigation::volume() const {
    return store_.settings().storageVolume().view();
}

void AppNavigation::OpenChannel(Channel* channel) {
    if (channel == nullptr || channel->state() == kChannelUpdating) {
        return;
    }
    const WString cacheFile =
        channel->cacheFile().isNull() ? WString(FeedFileName(channel->id())) : channel->cacheFile();
    const auto path = DataFilePath(volume(), cacheFile);
    if (!path || !FileExists(*path)) {
        // A channel whose download failed shows why at once; it is tried again all the same,
        // and its stories take the message's place when they come. One that fails now opens
        // with the reason, or, shown already, has its message brought up to date.
        const bool failed = channel->hasErrors() != 0;
        refresh_.AwaitOpening(channel, [this, failed](Channel& updated) {
            if (!failed) {
                ShowChannel(&updated);
            } else if (screens_.channel().channel() == &updated) {
                screens_.channel().ShowChannel(&updated);
            }
        });
        engine_.StartChannelUpdate(*channel, 0, true,
                                   [this](Channel& updated) { ShowChannel(&updated); });
        if (failed) {
            ShowChannel(channel);
        }
        return;
    }
    refresh_.AwaitOpening(nullptr, {});
    if (channel->items().empty()) {
        WaitCursor wait;
        LoadCachedFeed(*channel, volume());
    }
    ShowChannel(channel);
}

void AppNavigation::ShowChannel(Channel* channel) {
    // Another channel's story would stand beside this channel's headlines in a wide window.
    if (screens_.story().channel() != channel) {
        screens_.story().Forget();
    }
    screens_.channel().ShowChannel(channel);
    screens_.Show(kChannelScreen);
}

void AppNavigation::StepChannel(bool next) {
    ChannelsScreen& list = screens_.channels();
    const Channel* shown = screens_.channel().channel();
    Channel* step = next ? list.NextChannel(shown, true) : list.PreviousChannel(shown, true);
    if (step == nullptr) {
        screens_.Show(kChannelsScreen);
        return;
    }
    list.SelectRow(step);
    OpenChannel(step);
}

void AppNavigation::ShowStory(Channel* channel, NewsItem* item) {
    if (channel == nullptr || item == nullptr) {
        return;
    }
    // A refresh may have replaced the story since the tap; the read mark goes to the live one.
    item = refresh_.LiveStory(*channel, item);
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
    screens_.story().ShowStory(channel, item);
    refresh_.LiveStoryShown();
    screens_.Show(kStoryScreen);
    ChannelScreen& list = screens_.channel();
    if (list.channel() == channel) {
        // Back returns to the story's row, and the next story follows from it even when the
        // new-only filter takes the row away.
        list.SelectRow(item);
    }
    if (wasUnread) {
        if (store_.newHeadlines() != 0 && list.channel() == channel) {
            list.ShowChannel(channel);
        } else {
            list.UpdateRow(item, true);
        }
        screens_.channels().UpdateRow(channel, false);
    }
}

void AppNavigation::StepStory(bool next) {
    Channel* channel = screens_.story().channel();
    const NewsItem* shown = screens_.story().item();
    ChannelScreen& list = screens_.channel();
    if (channel == nullptr || list.channel() != channel) {
        return;
    }
    NewsItem* step = next ? list.NextStory(shown, true) : list.PreviousStory(shown, true);
    if (step != nullptr) {
        ShowStory(channel, step);
    }
}

void AppNavigation::OpenInBrowser(const WString& link) {
    const auto address = LinkForBrowser(link);
    if (!address) {
        return;
    }
    const QString text = ToQString(*address);
    if (!dialogs_.Open(QUrl(text))) {
        dialogs_.Tell(
            QStringLiteral("No web browser could be started to open this address:\n%1").arg(text));
        return;
    }
    screens_.HideForBrowser();
}

void AppNavigation::OpenLink(const QString& target) {
    if (!target.isEmpty()) {
        OpenInBrowser(WString(target.toStdU16String()));
    }
}

} // namespace qf::ui
