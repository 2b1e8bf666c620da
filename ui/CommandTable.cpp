#include "ui/App.h"
#include "ui/ChannelsScreen.h"

#include <array>

namespace qf::ui {

std::span<const App::CommandRoute> App::CommandRoutes() {
    static constexpr std::array kRoutes = std::to_array<CommandRoute>({
        {kNoScreen, kCmdQuit, &App::Quit},
        {kNoScreen, kCmdQuitQuillfeed, &App::Quit},
        {kNoScreen, kCmdAbout, &App::About},
        {kNoScreen, kCmdHelp, &App::Help},
        {kNoScreen, kCmdBack, &App::Back},

        {kWelcomeScreen, kCmdTextLargest, &App::TextSize},
        {kWelcomeScreen, kCmdTextLarger, &App::TextSize},
        {kWelcomeScreen, kCmdTextMedium, &App::TextSize},
        {kWelcomeScreen, kCmdTextSmaller, &App::TextSize},
        {kWelcomeScreen, kCmdTextSmallest, &App::TextSize},
        {kWelcomeScreen, kCmdClearType, &App::ToggleClearType},
        {kWelcomeScreen, kCmdContinue, &App::LeaveWelcome},

        {kChannelsScreen, kCmdRefreshAll, &App::RefreshAll},
        {kChannelsScreen, kCmdNew, &App::NewChannel},
        {kChannelsScreen, kCmdDeleteChannel, &App::DeleteChannel},
        {kChannelsScreen, kCmdShowChannel, &App::ShowSelectedChannel},
        {kChannelsScreen, kCmdDownloadChannel, &App::DownloadChannel},
        {kChannelsScreen, kCmdMarkAllRead, &App::MarkAll},
        {kChannelsScreen, kCmdMarkAllUnread, &App::MarkAll},
        {kChannelsScreen, kCmdChannelProperties, &App::EditChannelProperties},
        {kChannelsScreen, kCmdNewChannelsOnly, &App::ToggleNewChannels},
        {kChannelsScreen, kCmdOptions, &App::ChooseOptions},

        {kChannelScreen, kCmdRefreshChannel, &App::RefreshChannel},
        {kChannelScreen, kCmdPreviousChannel, &App::StepChannel},
        {kChannelScreen, kCmdNextChannel, &App::StepChannel},
        {kChannelScreen, kCmdNewHeadlinesOnly, &App::ToggleNewHeadlines},
        {kChannelScreen, kCmdDoNotSort, &App::ChooseSort},
        {kChannelScreen, kCmdSortByDate, &App::ChooseSort},
        {kChannelScreen, kCmdSortByStatus, &App::ChooseSort},
        {kChannelScreen, kCmdAscending, &App::ChooseSort},
        {kChannelScreen, kCmdMarkAllRead, &App::MarkChannel},
        {kChannelScreen, kCmdMarkAllUnread, &App::MarkChannel},
        {kChannelScreen, kCmdChannelProperties, &App::EditChannelProperties},

        {kStoryScreen, kCmdPreviousNews, &App::StepNews},
        {kStoryScreen, kCmdNextNews, &App::StepNews},
        {kStoryScreen, kCmdReadOnline, &App::ReadOnline},
        {kStoryScreen, kCmdFitToScreen, &App::ToggleFitToScreen},
        {kStoryScreen, kCmdClearType, &App::ToggleClearType},
        {kStoryScreen, kCmdTextLargest, &App::TextSize},
        {kStoryScreen, kCmdTextLarger, &App::TextSize},
        {kStoryScreen, kCmdTextMedium, &App::TextSize},
        {kStoryScreen, kCmdTextSmaller, &App::TextSize},
        {kStoryScreen, kCmdTextSmallest, &App::TextSize},

        // Offline reading and the podcast entries have no action.
        {kNoScreen, kCmdReadOffline, &App::NoAction},
        {kNoScreen, kCmdDownloadPodcast, &App::NoAction},
        {kNoScreen, kCmdPlayPodcast, &App::NoAction},
        {kNoScreen, kCmdCopyPodcast, &App::NoAction},
        {kNoScreen, kCmdDeletePodcast, &App::NoAction},
    });
    return kRoutes;
}

void App::SelectCategoryByCommand(int command) {
    if (command == kCmdAllCategories) {
        store_.SetCategoryId(-1);
        RefillChannels();
        return;
    }
    // Every command above 40100 takes part, not only the category entries: with eight or more
    // categories "New" (40108) shows the eighth. Users have always seen it so.
    const int index = command - kCmdFirstCategory;
    if (command > kCmdAllCategories && index < static_cast<int>(store_.categories().size())) {
        store_.SetCategoryId(index);
        RefillChannels();
    }
}

bool App::OnCommand(int sourceControl, int command) {
    if (sourceControl == kCtlNone) {
        SelectCategoryByCommand(command);
    }
    for (const CommandRoute& route : CommandRoutes()) {
        if (route.command == command && (route.screen == kNoScreen || route.screen == screen_)) {
            (this->*route.handler)(command);
            return true;
        }
    }
    return false;
}

} // namespace qf::ui
