#pragma once

#include <string_view>

namespace qf {

// The program's texts by their resource numbers (menus, messages, error texts). The screens and
// the core ask for the same numbers so that a text is written once.
std::u16string_view LoadString(int id);

// The numbers the core itself uses.
enum StringId : int {
    kStrProductName = 101,
    kStrDefaultCategory = 40227,
    kStrNewChannelTitle = 40243,
    kStrDownloadFailed = 40244,
    kStrParseFailed = 40245,
    kStrWelcomeGreeting = 40258,
    kStrWelcomeContinueHint = 40259,
};

} // namespace qf
