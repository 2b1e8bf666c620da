#pragma once

namespace qf::ui {

// Command numbers of the menus, soft keys and accelerators. The numbers are the program's own
// resource numbers, apart from the category entries, which have a range of their own.
enum CommandId : int {
    kCmdQuit = 1,
    kCmdAbout = 40003,
    kCmdHelp = 40004,
    kCmdBack = 40021,
    kCmdTextLarger = 40023,
    kCmdTextMedium = 40024,
    kCmdTextSmaller = 40025,
    kCmdTextSmallest = 40026,
    kCmdNewHeadlinesOnly = 40030,
    kCmdSortByDate = 40032,
    kCmdSortByStatus = 40033,
    kCmdMarkAllRead = 40034,
    kCmdMarkAllUnread = 40035,
    kCmdChannelProperties = 40036,
    kCmdDoNotSort = 40038,
    kCmdAscending = 40039,
    kCmdNewChannelsOnly = 40040,
    kCmdOptions = 40041,
    kCmdRefreshAll = 40050,
    kCmdAllCategories = 40100,
    kCmdPreviousChannel = 40102,
    kCmdNextChannel = 40103,
    kCmdRefreshChannel = 40104,
    kCmdPreviousNews = 40105,
    kCmdNextNews = 40106,
    kCmdNew = 40108,
    kCmdDeleteChannel = 40109,
    kCmdShowChannel = 40110,
    kCmdDownloadChannel = 40111,
    kCmdContinue = 40117,
    kCmdQuitQuillfeed = 40124,
    kCmdReadOnline = 40140,
    kCmdReadOffline = 40148,
    kCmdDownloadPodcast = 40151,
    kCmdPlayPodcast = 40152,
    kCmdCopyPodcast = 40153,
    kCmdDeletePodcast = 40154,
    kCmdFitToScreen = 40202,
    kCmdClearType = 40208,
    kCmdTextLargest = 40212,
    kCmdStopProgress = 40305,
};

// The entries of the category submenu after "All Categories", one per category from the first.
// No other command has a number in their range, so that no command is taken for a category.
inline constexpr int kCmdFirstCategory = 41000;
inline constexpr int kMaxCategoryEntries = 100;

// Commands the handheld program never had take numbers from 42000 on, clear of its own and of
// the category entries.
inline constexpr int kCmdSyncNow = 42000;

constexpr bool IsCategoryEntry(int command) {
    return command >= kCmdFirstCategory && command < kCmdFirstCategory + kMaxCategoryEntries;
}

// Control numbers by which screens name the child that sent a private message.
enum ControlId : int {
    kCtlNone = 0,
    kCtlChannelList = 121,
    kCtlChannelView = 132,
    kCtlStoryScreen = 140,
    kCtlStoryView = 141,
};

// The screens, by the numbers the frame keeps.
enum Screen : int {
    kNoScreen = 0,
    kWelcomeScreen = 1,
    kChannelsScreen = 2,
    kChannelScreen = 3,
    kStoryScreen = 4,
};

} // namespace qf::ui
