#pragma once

#include "ui/CommandIds.h"

#include <span>
#include <string_view>

namespace qf::ui {

// One entry of a menu table: a command, a separator, or a submenu with its own entries.
struct MenuEntry {
    enum Kind { kCommand, kSeparator, kSubmenu };
    Kind kind = kCommand;
    // The command of a kCommand entry; 0 otherwise.
    int id = 0;
    // The caption of a submenu; a command's text comes from MenuText(id).
    std::u16string_view caption;
    std::span<const MenuEntry> entries;
    // A string-table number whose text the command shows instead of its menu text; 0 for none.
    int stringId = 0;
    // The object name of a submenu that the program looks up; empty for none.
    std::string_view objectName;
};

// The text an entry shows.
std::u16string_view EntryText(const MenuEntry& entry);

// What a screen shows in its soft-key bar: the left soft key's command and the entries of the
// right soft key's "Menu".
struct MenuBar {
    int resource = 0;
    int leftCommand = 0;
    std::span<const MenuEntry> menu;
};

// The menu text of a command, as the menus and soft keys show it (an "&&" is one "&"); empty for
// a number that names no command.
std::u16string_view MenuText(int id);

// The soft-key bar of `screen` (the welcome screen's for kNoScreen).
const MenuBar& MenuBarFor(Screen screen);

// The menu shown over a selected row of the channels list.
std::span<const MenuEntry> ChannelContextMenu();

// The object name of the submenu that lists the categories on the channels screen.
inline constexpr std::string_view kCategorySubmenuName = "CategorySubmenu";

} // namespace qf::ui
