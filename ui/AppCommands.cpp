#include "net/BrowserLink.h"
#include "net/RefreshEngine.h"
#include "platform/StringTable.h"
#include "store/CachedFeeds.h"
#include "store/ChannelStoreFile.h"
#include "ui/AddChannelWizard.h"
#include "ui/App.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/HelpPage.h"
#include "ui/HtmlView.h"
#include "ui/MainWindow.h"
#include "ui/QtText.h"
#include "ui/StoryScreen.h"
#include "ui/WaitCursor.h"
#include "ui/WelcomeScreen.h"

namespace qf::ui {

namespace {

constexpr int kStrDeleteQuestion = 40247;

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

void App::Quit(int) {
    mainWindow_->close();
}

void App::About(int) {
    dialogs_.about();
}

void App::Help(int) {
    const QUrl page = HelpPageUrl();
    if (page.isEmpty() || !dialogs_.open(page)) {
        dialogs_.tell(QStringLiteral("The help page could not be opened."));
    }
}

void App::Back(int) {
    if (!store_.loaded() || screen_ == kChannelScreen) {
        SetScreen(kChannelsScreen);
    } else if (screen_ == kStoryScreen) {
        SetScreen(kChannelScreen);
    }
}

void App::TextSize(int command) {
    store_.settings().SetTextSize(TextSizeOf(command));
    HtmlView* view = screen_ == kWelcomeScreen ? welcomeScreen_->view() : storyScreen_->view();
    view->SetTextSize(TextSizeOf(command));
}

void App::ToggleClearType(int) {
    ViewerSettings& settings = store_.settings();
    settings.SetClearType(settings.clearType() != 0 ? 0 : 1);
    HtmlView* view = screen_ == kWelcomeScreen ? welcomeScreen_->view() : storyScreen_->view();
    view->SetClearType(settings.clearType() != 0);
}

void App::ToggleFitToScreen(int) {
    ViewerSettings& settings = store_.settings();
    settings.SetFitToScreen(settings.fitToScreen() != 0 ? 0 : 1);
    storyScreen_->view()->SetFitToScreen(settings.fitToScreen() != 0);
}

void App::LeaveWelcome(int) {
    if (AddChannels()) {
        RefillChannels();
    }
    SetScreen(kChannelsScreen);
    store_.SetLoaded(true);
}

bool App::AddChannels() {
    AddChannelWizard wizard(store_, family_, mainWindow_.get());
    return RunDialog(wizard) == QDialog::Accepted && wizard.Apply();
}

void App::RefreshAll(int) {
    if (store_.refresh().busy()) {
        store_.refresh().RequestStop();
        return;
    }
    if (engine_->StartRefreshAll(true)) {
        RefreshAllStarted();
    }
}

void App::NewChannel(int) {
    if (AddChannels()) {
        RefillChannels();
    }
}

void App::DeleteChannel(int) {
    Channel* channel = channelsScreen_->SelectedChannel();
    if (channel == nullptr || !dialogs_.ask(ToQString(LoadString(kStrDeleteQuestion)))) {
        return;
    }
    DeleteChannelFiles(*channel, volume());
    channelsScreen_->RemoveRow(channel);
    if (channelScreen_->channel() == channel) {
        channelScreen_->ShowChannel(nullptr);
    }
    if (storyScreen_->channel() == channel) {
        storyScreen_->Forget();
    }
    updating_.erase(channel);
    if (channel == refreshingChannel_) {
        EndChannelRefresh();
    }
    if (storyScreen_->channel() == nullptr) {
        shownRetiredStory_.reset();
    }
    // The store owns the channel; it goes here.
    store_.RemoveChannel(channel);
}

void App::ShowSelectedChannel(int) {
    OpenChannel(channelsScreen_->SelectedChannel());
}

void App::DownloadChannel(int) {
    if (Channel* channel = channelsScreen_->SelectedChannel()) {
        store_.refresh().ClearStop();
        engine_->StartChannelUpdate(*channel, 0, true);
    }
}

void App::MarkAll(int command) {
    WaitCursor wait;
    for (const auto& category : store_.categories()) {
        for (const auto& channel : category->channels()) {
            if (channel) {
                MarkAllItems(*channel, command == kCmdMarkAllRead, volume());
            }
        }
    }
    RefillChannels();
}

void App::ToggleNewChannels(int) {
    store_.SetNewChannels(store_.newChannels() != 0 ? 0 : 1);
    RefillChannels();
}

void App::RefreshChannel(int) {
    if (store_.refresh().busy()) {
        store_.refresh().RequestStop();
        return;
    }
    Channel* channel = channelScreen_->channel();
    if (channel == nullptr) {
        return;
    }
    store_.refresh().Start();
    refreshCursor_ = std::make_unique<WaitCursor>();
    refreshingChannel_ = channel;
    // Busy is cleared when the channel's update ends, failed or stopped as well as done.
    engine_->StartChannelUpdate(
        *channel, 0, true, [this](Channel& updated) { channelScreen_->ShowChannel(&updated); });
    if (channel->state() != kChannelUpdating) {
        EndChannelRefresh();
    }
}

void App::StepChannel(int command) {
    const Channel* shown = channelScreen_->channel();
    Channel* next = command == kCmdPreviousChannel ? channelsScreen_->PreviousChannel(shown, true)
                                                   : channelsScreen_->NextChannel(shown, true);
    if (next == nullptr) {
        SetScreen(kChannelsScreen);
        return;
    }
    channelsScreen_->SelectRow(next);
    OpenChannel(next);
}

void App::ToggleNewHeadlines(int) {
    store_.SetNewHeadlines(store_.newHeadlines() != 0 ? 0 : 1);
    channelScreen_->ShowChannel(channelScreen_->channel());
}

void App::ChooseSort(int command) {
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
    channelScreen_->ShowChannel(channelScreen_->channel());
}

void App::MarkChannel(int command) {
    Channel* channel = channelScreen_->channel();
    if (channel == nullptr) {
        return;
    }
    MarkAllItems(*channel, command == kCmdMarkAllRead, volume());
    if (store_.newHeadlines() != 0) {
        channelScreen_->ShowChannel(channel);
    } else {
        channelScreen_->RepaintList();
    }
    channelsScreen_->UpdateRow(channel, false);
}

void App::StepNews(int command) {
    StepStory(command == kCmdNextNews);
}

void App::ReadOnline(int) {
    const NewsItem* item = storyScreen_->item();
    if (item == nullptr) {
        return;
    }
    if (const auto address = LinkForBrowser(item->link())) {
        HideForBrowser();
        dialogs_.open(QUrl(ToQString(*address)));
    }
}

void App::NoAction(int) {}

} // namespace qf::ui
