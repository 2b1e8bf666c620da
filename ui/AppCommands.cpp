#include "ui/AppCommands.h"

#include "model/ChannelStore.h"
#include "net/RefreshEngine.h"
#include "platform/StringTable.h"
#include "store/CachedFeeds.h"
#include "store/ChannelStoreFile.h"
#include "sync/SyncRun.h"
#include "ui/AppDialogs.h"
#include "ui/AppNavigation.h"
#include "ui/AppRefresh.h"
#include "ui/AppScreens.h"
#include "ui/AppSync.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/HelpPage.h"
#include "ui/HtmlView.h"
#include "ui/MainWindow.h"
#include "ui/QtText.h"
#include "ui/StoryScreen.h"
#include "ui/WaitCursor.h"

namespace qf::ui {

namespace {

// The text size level each size command chooses.
int TextSizeOf(int command) {
    switch (command) {
    case kCmdTextLargest:
        return 4;
    case kCmdTextLarger:
        return 3;
    case kCmdTextSmaller:
        return 1;
    case kCmdTextSmallest:
        return 0;
    default:
        return 2;
    }
}

} // namespace

AppCommands::AppCommands(const Parts& parts)
    : store_(parts.store), screens_(parts.screens), navigation_(parts.navigation),
      refresh_(parts.refresh), engine_(parts.engine), sync_(parts.sync), dialogs_(parts.dialogs),
      family_(parts.family) {}

std::u16string_view AppCommands::volume() const {
    return store_.settings().storageVolume().view();
}

void AppCommands::Quit(int) {
    screens_.window().close();
}

void AppCommands::About(int) {
    dialogs_.About();
}

void AppCommands::Help(int) {
    const QUrl page = HelpPageUrl();
    if (page.isEmpty() || !dialogs_.Open(page)) {
        dialogs_.Tell(QStringLiteral("The help page could not be opened."));
    }
}

void AppCommands::Back(int) {
    if (!store_.loaded() || screens_.current() == kChannelScreen) {
        screens_.Show(kChannelsScreen);
    } else if (screens_.current() == kStoryScreen) {
        screens_.Show(kChannelScreen);
    }
}

void AppCommands::TextSize(int command) {
    store_.settings().SetTextSize(TextSizeOf(command));
    screens_.textView().SetTextSize(TextSizeOf(command));
}

void AppCommands::ToggleClearType(int) {
    ViewerSettings& settings = store_.settings();
    settings.SetClearType(settings.clearType() != 0 ? 0 : 1);
    screens_.textView().SetClearType(settings.clearType() != 0);
}

void AppCommands::ToggleFitToScreen(int) {
    ViewerSettings& settings = store_.settings();
    settings.SetFitToScreen(settings.fitToScreen() != 0 ? 0 : 1);
    screens_.story().view()->SetFitToScreen(settings.fitToScreen() != 0);
}

void AppCommands::LeaveWelcome(int) {
    if (dialogs_.AddChannels(store_, family_, screens_.window())) {
        screens_.RefillChannels();
    }
    screens_.Show(kChannelsScreen);
    store_.SetLoaded(true);
}

void AppCommands::RefreshAll(int) {
    if (store_.refresh().busy()) {
        store_.refresh().RequestStop();
        return;
    }
    if (engine_.StartRefreshAll(true)) {
        // The refresh saved the read states as it started.
        QueueLocalChanges(store_, FeedDate::NowUtc());
        refresh_.RefreshAllStarted();
    }
}

void AppCommands::SyncNow(int) {
    sync_.Start();
}

void AppCommands::NewChannel(int) {
    if (dialogs_.AddChannels(store_, family_, screens_.window())) {
        screens_.RefillChannels();
    }
}

void AppCommands::DeleteChannel(int) {
    Channel* channel = screens_.channels().SelectedChannel();
    if (channel == nullptr || !dialogs_.Ask(ToQString(LoadString(kStrDeleteQuestion)))) {
        return;
    }
    DeleteChannelFiles(*channel, volume());
    screens_.channels().RemoveRow(channel);
    if (screens_.channel().channel() == channel) {
        screens_.channel().ShowChannel(nullptr);
    }
    if (screens_.story().channel() == channel) {
        screens_.story().Forget();
    }
    refresh_.ForgetChannel(channel);
    // The store owns the channel; it goes here.
    store_.RemoveChannel(channel);
}

void AppCommands::ShowSelectedChannel(int) {
    navigation_.OpenChannel(screens_.channels().SelectedChannel());
}

void AppCommands::DownloadChannel(int) {
    if (Channel* channel = screens_.channels().SelectedChannel()) {
        store_.refresh().ClearStop();
        engine_.StartChannelUpdate(*channel, 0, true);
    }
}

void AppCommands::MarkAll(int command) {
    WaitCursor wait;
    for (const auto& category : store_.categories()) {
        for (const auto& channel : category->channels()) {
            if (channel) {
                MarkAllItems(*channel, command == kCmdMarkAllRead, volume());
            }
        }
    }
    QueueLocalChanges(store_, FeedDate::NowUtc());
    screens_.RefillChannels();
}

void AppCommands::ToggleNewChannels(int) {
    store_.SetNewChannels(store_.newChannels() != 0 ? 0 : 1);
    screens_.RefillChannels();
}

void AppCommands::RefreshChannel(int) {
    if (store_.refresh().busy()) {
        store_.refresh().RequestStop();
        return;
    }
    Channel* channel = screens_.channel().channel();
    if (channel == nullptr) {
        return;
    }
    store_.refresh().Start();
    refresh_.ChannelRefreshStarted(*channel);
    // Busy is cleared when the channel's update ends, failed or stopped as well as done.
    engine_.StartChannelUpdate(
        *channel, 0, true, [this](Channel& updated) { screens_.channel().ShowChannel(&updated); });
    if (channel->state() != kChannelUpdating) {
        refresh_.EndChannelRefresh();
    }
}

void AppCommands::StepChannel(int command) {
    navigation_.StepChannel(command == kCmdNextChannel);
}

void AppCommands::ToggleNewHeadlines(int) {
    store_.SetNewHeadlines(store_.newHeadlines() != 0 ? 0 : 1);
    screens_.channel().ShowChannel(screens_.channel().channel());
}

void AppCommands::ChooseSort(int command) {
    int32_t key = store_.sortBy();
    int32_t order = store_.sortOrder();
    if (command == kCmdAscending) {
        order = order == 1 ? 0 : 1;
    } else {
        key = command == kCmdSortByDate     ? kSortByDate
              : command == kCmdSortByStatus ? kSortByStatus
                                            : kSortNone;
    }
    if (key == store_.sortBy() && order == store_.sortOrder()) {
        return;
    }
    store_.SetSortBy(key);
    store_.SetSortOrder(order);
    screens_.channel().ShowChannel(screens_.channel().channel());
}

void AppCommands::MarkChannel(int command) {
    Channel* channel = screens_.channel().channel();
    if (channel == nullptr) {
        return;
    }
    MarkAllItems(*channel, command == kCmdMarkAllRead, volume());
    QueueLocalChanges(store_, FeedDate::NowUtc());
    if (store_.newHeadlines() != 0) {
        screens_.channel().ShowChannel(channel);
    } else {
        screens_.channel().RepaintList();
    }
    screens_.channels().UpdateRow(channel, false);
}

void AppCommands::StepNews(int command) {
    navigation_.StepStory(command == kCmdNextNews);
}

void AppCommands::ReadOnline(int) {
    if (const NewsItem* item = screens_.story().item()) {
        navigation_.OpenInBrowser(item->link());
    }
}

void AppCommands::EditChannelProperties(int) {
    const bool onChannel = screens_.current() == kChannelScreen;
    Channel* channel =
        onChannel ? screens_.channel().channel() : screens_.channels().SelectedChannel();
    if (channel == nullptr || !dialogs_.EditChannel(*channel, store_, screens_.window())) {
        return;
    }
    // The new title shows at once; the address, the credentials and the interval serve the next
    // refresh.
    screens_.channels().UpdateRow(channel, false);
    if (onChannel) {
        screens_.channel().ShowChannel(channel);
    }
}

void AppCommands::ChooseOptions(int) {
    // A refresh or a sync writes into the data folder; moving the folder under it would leave its
    // files behind on the old volume.
    if (sync_.running()) {
        dialogs_.Tell(QStringLiteral("Please wait until the sync has finished."));
        return;
    }
    if (refresh_.running()) {
        dialogs_.Tell(QStringLiteral("Please wait until the refresh has finished."));
        return;
    }
    const int32_t showImages = store_.settings().showImages();
    dialogs_.ChooseOptions(store_, screens_.window());
    if (store_.settings().showImages() != showImages) {
        screens_.story().ShowPicturesAgain();
    }
}

void AppCommands::NoAction(int) {}

} // namespace qf::ui
