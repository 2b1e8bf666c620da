#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace qf {

// Where the program keeps its files in the user's home, after the XDG base-directory rules.
// Each answers nullopt when no home folder can be found.

// The user's login name: $USER, else the one of the password database.
std::optional<std::string> UserName();

// $XDG_CONFIG_HOME/Orvelcraft, by default ~/.config/Orvelcraft: the folder in which Qt's
// QSettings("Orvelcraft", "Quillfeed") keeps its file, so the GUI shares it.
std::optional<std::filesystem::path> ConfigFolder();
// The settings file, "Quillfeed.conf" in the configuration folder.
std::optional<std::filesystem::path> SettingsFilePath();
// The lock file that keeps two writers apart, beside the settings file: it stays put when the
// data moves to another volume, and taking it never creates the data folder.
std::optional<std::filesystem::path> DataLockFilePath();
// The folder that holds the data folder on main memory: $QUILLFEED_HOME when set, otherwise
// $XDG_DATA_HOME/Quillfeed, by default ~/.local/share/Quillfeed.
std::optional<std::filesystem::path> MainMemoryFolder();

} // namespace qf
