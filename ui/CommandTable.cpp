#include "model/ChannelStore.h"
#include "ui/AppCommands.h"
#include "ui/AppScreens.h"

#include <array>

namespace qf::ui {

std::span<const AppCommands::Route> AppCommands::Routes() {
    static constexpr std::array kRoutes = std::to_array<Route>({
        {kNoScreen, kCmdQuit, &AppCommands::Quit},
        {kNoScreen, kCmdQuitQuillfeed, &AppCommands::Quit},
        {kNoScreen, kCmdAbout, &AppCommands::About},
        {kNoScreen, kCmdHelp, &AppCommands::Help},
        {kNoScreen, kCmdBack, &AppCommands::Back},

        {kWelcomeScreen, kCmdTextLargest, &AppCommands::TextSize},
        {kWelcomeScreen, kCmdTextLarger, &AppCommands::TextSize},
        {kWelcomeScreen, kCmdTextMedium, &AppCommands::TextSize},
        {kWelcomeScreen, kCmdTextSmaller, &AppCommands::TextSize},
        {kWelcomeScreen, kCmdTextSmallest, &AppCommands::TextSize},
        {kWelcomeScreen, kCmdClearType, &AppCommands::ToggleClearType},
        {kWelcomeScreen, kCmdContinue, &AppCommands::LeaveWelcome},

        {kChannelsScreen, kCmdRefreshAll, &AppCommands::RefreshAll},
        {kChannelsScreen, kCmdSyncNow, &AppCommands::SyncNow},
        {kChannelsScreen, kCmdNew, &AppCommands::NewChannel},
        {kChannelsScreen, kCmdDeleteChannel, &AppCommands::DeleteChannel},
        {kChannelsScreen, kCmdShowChannel, &AppCommands::ShowSelectedChannel},
        {kChannelsScreen, kCmdDownloadChannel, &AppCommands::DownloadChannel},
        {kChannelsScreen, kCmdMarkAllRead, &AppCommands::MarkAll},
        {kChannelsScreen, kCmdMarkAllUnread, &AppCommands::MarkAll},
        {kChannelsScreen, kCmdChannelProperties, &AppCommands::EditChannelProperties},
        {kChannelsScreen, kCmdNewChannelsOnly, &AppCommands::ToggleNewChannels},
        {kChannelsScreen, kCmdOptions, &AppCommands::ChooseOptions},

        {kChannelScreen, kCmdRefreshChannel, &AppCommands::RefreshChannel},
        {kChannelScreen, kCmdPreviousChannel, &AppCommands::StepChannel},
        {kChannelScreen, kCmdNextChannel, &AppCommands::StepChannel},
        {kChannelScreen, kCmdNewHeadlinesOnly, &AppCommands::ToggleNewHeadlines},
        {kChannelScreen, kCmdDoNotSort, &AppCommands::ChooseSort},
        {kChannelScreen, kCmdSortByDate, &AppCommands::ChooseSort},
        {kChannelScreen, kCmdSortByStatus, &AppCommands::ChooseSort},
        {kChannelScreen, kCmdAscending, &AppCommands::ChooseSort},
        {kChannelScreen, kCmdMarkAllRead, &AppCommands::MarkChannel},
        {kChannelScreen, kCmdMarkAllUnread, &AppCommands::MarkChannel},
        {kChannelScreen, kCmdChannelProperties, &AppCommands::EditChannelProperties},

        {kStoryScreen, kCmdPreviousNews, &AppCommands::StepNews},
        {kStoryScreen, kCmdNextNews, &AppCommands::StepNews},
        {kStoryScreen, kCmdReadOnline, &AppCommands::ReadOnline},
        {kStoryScreen, kCmdFitToScreen, &AppCommands::ToggleFitToScreen},
        {kStoryScreen, kCmdClearType, &AppCommands::ToggleClearType},
        {kStoryScreen, kCmdTextLargest, &AppCommands::TextSize},
        {kStoryScreen, kCmdTextLarger, &AppCommands::TextSize},
        {kStoryScreen, kCmdTextMedium, &AppCommands::TextSize},
        {kStoryScreen, kCmdTextSmaller, &AppCommands::TextSize},
        {kStoryScreen, kCmdTextSmallest, &AppCommands::TextSize},

        // Offline reading and the podcast entries have no action.
        {kNoScreen, kCmdReadOffline, &AppCommands::NoAction},
        {kNoScreen, kCmdDownloadPodcast, &AppCommands::NoAction},
        {kNoScreen, kCmdPlayPodcast, &AppCommands::NoAction},
        {kNoScreen, kCmdCopyPodcast, &AppCommands::NoAction},
        {kNoScreen, kCmdDeletePodcast, &AppCommands::NoAction},
    });
    return kRoutes;
}

void AppCommands::SelectCategory(int command) {
    const int index = command == kCmdAllCategories ? -1 : command - kCmdFirstCategory;
    if (index < static_cast<int>(store_.categories().size())) {
        store_.SetCategoryId(index);
        screens_.RefillChannels();
    }
}

bool AppCommands::Run(int sourceControl, int command) {
    // Only the category submenu's entries choose the category shown; no other command does.
    if (sourceControl == kCtlNone && (command == kCmdAllCategories || IsCategoryEntry(command))) {
        SelectCategory(command);
        return true;
    }
    for (const Route& route : Routes()) {
        if (route.command == command &&
            (route.screen == kNoScreen || route.screen == screens_.current())) {
            (this->*route.handler)(command);
            return true;
        }
    }
    return false;
}

} // namespace qf::ui
