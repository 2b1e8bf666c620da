#include "platform/UserFolders.h"

#include <cstdlib>
#include <pwd.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace qf {

namespace {

std::optional<std::string> NonEmptyEnv(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') {
        return std::nullopt;
    }
    return std::string(value);
}

// A field of the user's entry in the password database.
std::optional<std::string> PasswordEntryField(char* passwd::*field) {
    const long size = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(size > 0 ? static_cast<std::size_t>(size) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 ||
        found == nullptr || found->*field == nullptr || *(found->*field) == '\0') {
        return std::nullopt;
    }
    return std::string(found->*field);
}

std::optional<std::filesystem::path> HomeFolder() {
    auto home = NonEmptyEnv("HOME");
    if (!home) {
        home = PasswordEntryField(&passwd::pw_dir);
    }
    if (!home) {
        return std::nullopt;
    }
    return std::filesystem::path(*home);
}

// The value of an XDG variable, or `fallback` below the home folder when it is unset. A relative
// value is taken as it is, as Qt takes it, so that both find the same file.
std::optional<std::filesystem::path> XdgFolder(const char* variable, const char* fallback) {
    if (auto value = NonEmptyEnv(variable)) {
        return std::filesystem::path(*value);
    }
    auto home = HomeFolder();
    if (!home) {
        return std::nullopt;
    }
    return *home / fallback;
}

} // namespace

std::optional<std::string> UserName() {
    auto name = NonEmptyEnv("USER");
    return name ? name : PasswordEntryField(&passwd::pw_name);
}

std::optional<std::filesystem::path> ConfigFolder() {
    auto config = XdgFolder("XDG_CONFIG_HOME", ".config");
    if (!config) {
        return std::nullopt;
    }
    return *config / "Orvelcraft";
}

std::optional<std::filesystem::path> SettingsFilePath() {
    auto folder = ConfigFolder();
    if (!folder) {
        return std::nullopt;
    }
    return *folder / "Quillfeed.conf";
}

std::optional<std::filesystem::path> DataLockFilePath() {
    auto folder = ConfigFolder();
    if (!folder) {
        return std::nullopt;
    }
    return *folder / "Quillfeed.lock";
}

std::optional<std::filesystem::path> MainMemoryFolder() {
    if (auto home = NonEmptyEnv("QUILLFEED_HOME")) {
        return std::filesystem::path(*home);
    }
    auto data = XdgFolder("XDG_DATA_HOME", ".local/share");
    if (!data) {
        return std::nullopt;
    }
    return *data / "Quillfeed";
}

} // namespace qf
