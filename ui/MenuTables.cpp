#include "ui/MenuTables.h"

#include "platform/StringTable.h"

#include <algorithm>
#include <array>

namespace qf::ui {

namespace {

struct MenuTextEntry {
    int id;
    std::u16string_view text;
};

// Sorted by number for the lookup.
constexpr std::array kMenuTexts = std::to_array<MenuTextEntry>({
    {kCmdQuit, u"Quit"},
    {kCmdAbout, u"About"},
    {kCmdHelp, u"Help"},
    {kCmdBack, u"Back"},
    {kCmdTextLarger, u"Larger"},
    {kCmdTextMedium, u"Medium"},
    {kCmdTextSmaller, u"Smaller"},
    {kCmdTextSmallest, u"Smallest"},
    {kCmdNewHeadlinesOnly, u"New Headlines Only"},
    {kCmdSortByDate, u"Date && Time"},
    {kCmdSortByStatus, u"Status"},
    {kCmdMarkAllRead, u"Mark All as Read"},
    {kCmdMarkAllUnread, u"Mark All as Unread"},
    {kCmdChannelProperties, u"Channel Properties"},
    {kCmdDoNotSort, u"Do not sort"},
    {kCmdAscending, u"Ascending"},
    {kCmdNewChannelsOnly, u"New Channels Only"},
    {kCmdOptions, u"Options"},
    {kCmdRefreshAll, u"Refresh All Channels"},
    {kCmdAllCategories, u"All Categories"},
    {kCmdPreviousChannel, u"Previous Channel"},
    {kCmdNextChannel, u"Next Channel"},
    {kCmdRefreshChannel, u"Refresh Channel"},
    {kCmdPreviousNews, u"Previous News"},
    {kCmdNextNews, u"Next News"},
    {kCmdNew, u"New"},
    {kCmdDeleteChannel, u"Delete Channel"},
    {kCmdShowChannel, u"Show Channel"},
    {kCmdDownloadChannel, u"Download Channel"},
    {kCmdContinue, u"Continue"},
    {kCmdQuitQuillfeed, u"Quit Quillfeed"},
    {kCmdReadOnline, u"Read Story Online"},
    {kCmdReadOffline, u"Read Story Offline"},
    {kCmdDownloadPodcast, u"Download Podcast"},
    {kCmdPlayPodcast, u"Play Podcast"},
    {kCmdCopyPodcast, u"Copy To"},
    {kCmdDeletePodcast, u"Delete Podcast"},
    {kCmdFitToScreen, u"Fit to Screen"},
    {kCmdClearType, u"ClearType"},
    {kCmdTextLargest, u"Largest"},
    {kCmdSyncNow, u"Sync Now"},
});

constexpr MenuEntry Command(int id, int stringId = 0) {
    return {MenuEntry::kCommand, id, {}, {}, stringId, {}};
}
constexpr MenuEntry Separator() {
    return {MenuEntry::kSeparator, 0, {}, {}, 0, {}};
}
constexpr MenuEntry Submenu(std::u16string_view caption, std::span<const MenuEntry> entries,
                            std::string_view objectName = {}) {
    return {MenuEntry::kSubmenu, 0, caption, entries, 0, objectName};
}

constexpr MenuEntry kTextSizeEntries[] = {
    Command(kCmdTextLargest), Command(kCmdTextLarger),   Command(kCmdTextMedium),
    Command(kCmdTextSmaller), Command(kCmdTextSmallest),
};

constexpr MenuEntry kPodcastEntries[] = {
    Command(kCmdDownloadPodcast),
    Command(kCmdPlayPodcast),
    Command(kCmdCopyPodcast),
    Command(kCmdDeletePodcast),
};

constexpr MenuEntry kWelcomeMenu[] = {
    Submenu(u"Text Size", kTextSizeEntries),
    Command(kCmdClearType),
    Separator(),
    Command(kCmdHelp),
    Command(kCmdAbout),
};

// The category list is filled in each time the View submenu opens.
constexpr MenuEntry kCategoryEntries[] = {Command(kCmdAllCategories)};

constexpr MenuEntry kChannelsViewEntries[] = {
    Submenu(u"Category", kCategoryEntries, kCategorySubmenuName),
    Command(kCmdNewChannelsOnly),
};

constexpr MenuEntry kChannelsMenu[] = {
    Command(kCmdRefreshAll),
    Command(kCmdSyncNow),
    Separator(),
    Command(kCmdShowChannel),
    Command(kCmdDownloadChannel),
    Command(kCmdDeleteChannel),
    Command(kCmdChannelProperties),
    Separator(),
    Submenu(u"View", kChannelsViewEntries),
    Command(kCmdMarkAllRead),
    Command(kCmdMarkAllUnread),
    Separator(),
    Command(kCmdOptions),
    Command(kCmdHelp),
    Command(kCmdAbout),
    Separator(),
    Command(kCmdQuitQuillfeed),
};

constexpr MenuEntry kChannelViewEntries[] = {
    Command(kCmdNewHeadlinesOnly), Separator(), Command(kCmdDoNotSort), Command(kCmdSortByDate),
    Command(kCmdSortByStatus),     Separator(), Command(kCmdAscending),
};

constexpr MenuEntry kChannelMenu[] = {
    Command(kCmdRefreshChannel),
    Separator(),
    Command(kCmdPreviousChannel),
    Command(kCmdNextChannel),
    Separator(),
    Submenu(u"View", kChannelViewEntries),
    Command(kCmdMarkAllRead),
    Command(kCmdMarkAllUnread),
    Submenu(u"Podcast", kPodcastEntries),
    Separator(),
    Command(kCmdChannelProperties),
};

constexpr MenuEntry kStoryViewEntries[] = {
    Submenu(u"Text Size", kTextSizeEntries),
    Command(kCmdFitToScreen),
    Command(kCmdClearType),
};

constexpr MenuEntry kStoryMenu[] = {
    Command(kCmdPreviousNews),
    Command(kCmdNextNews),
    Separator(),
    Command(kCmdReadOffline),
    Command(kCmdReadOnline),
    Separator(),
    Submenu(u"View", kStoryViewEntries),
    Submenu(u"Podcast", kPodcastEntries),
};

constexpr MenuEntry kChannelContextMenu[] = {
    Command(kCmdShowChannel),
    Command(kCmdDownloadChannel),
    Separator(),
    Command(kCmdDeleteChannel, kStrDeleteChannel),
    Separator(),
    Command(kCmdChannelProperties, kStrChannelPropertiesEllipsis),
};

constexpr MenuBar kWelcomeBar{1044, kCmdContinue, kWelcomeMenu};
constexpr MenuBar kChannelsBar{1045, kCmdNew, kChannelsMenu};
constexpr MenuBar kChannelBar{1046, kCmdBack, kChannelMenu};
constexpr MenuBar kStoryBar{1047, kCmdBack, kStoryMenu};

} // namespace

std::u16string_view MenuText(int id) {
    const auto* found =
        std::lower_bound(kMenuTexts.begin(), kMenuTexts.end(), id,
                         [](const MenuTextEntry& entry, int wanted) { return entry.id < wanted; });
    return found != kMenuTexts.end() && found->id == id ? found->text : std::u16string_view();
}

std::u16string_view EntryText(const MenuEntry& entry) {
    if (entry.kind == MenuEntry::kSubmenu) {
        return entry.caption;
    }
    return entry.stringId != 0 ? LoadString(entry.stringId) : MenuText(entry.id);
}

const MenuBar& MenuBarFor(Screen screen) {
    switch (screen) {
    case kChannelsScreen:
        return kChannelsBar;
    case kChannelScreen:
        return kChannelBar;
    case kStoryScreen:
        return kStoryBar;
    default:
        return kWelcomeBar;
    }
}

std::span<const MenuEntry> ChannelContextMenu() {
    return kChannelContextMenu;
}

} // namespace qf::ui
