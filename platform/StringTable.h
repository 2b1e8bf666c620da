#pragma once

#include <string_view>

namespace qf {

// The program's texts by their resource numbers (menus, messages, error texts). The screens and
// the core ask for the same numbers so that a text is written once.
std::u16string_view LoadString(int id);

// The numbers the core itself uses.
enum StringId : int {
    kStrDefaultCategory = 40227,
    kStrDownloadFailed = 40244,
    kStrParseFailed = 40245,
};

} // namespace qf
