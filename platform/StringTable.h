#pragma once

#include <string_view>

namespace qf {

// The program's texts by their resource numbers (menus, messages, error texts). The screens and
// the core ask for the same numbers so that a text is written once.
std::u16string_view LoadString(int id);

// The numbers of the texts the program asks for, the one place they are named.
enum StringId : int {
    kStrProductName = 101,
    kStrAddChannel = 40031,
    kStrDeleteChannel = 40043,
    kStrChannelPropertiesEllipsis = 40044,
    kStrMoveQuestion = 40052,
    kStrOpenStoreFailed = 40211,
    kStrDefaultCategory = 40227,
    kStrMainMemory = 40242,
    kStrNewChannelTitle = 40243,
    kStrDownloadFailed = 40244,
    kStrParseFailed = 40245,
    kStrAllCategories = 40246,
    kStrDeleteQuestion = 40247,
    kStrCut = 40248,
    kStrCopy = 40249,
    kStrPaste = 40250,
    kStrClear = 40251,
    kStrSelectAll = 40252,
    kStrSelectFromList = 40253,
    kStrEnterChannelUrl = 40254,
    kStrImportFromOpml = 40255,
    kStrRefreshAll = 40256,
    kStrStopRefreshAll = 40257,
    kStrWelcomeGreeting = 40258,
    kStrWelcomeContinueHint = 40259,
    kStrStageDownloadFeed = 40269,
    kStrStageParseFeed = 40270,
    kStrStageDownloadImage = 40271,
    kStrRefreshChannel = 40282,
    kStrStopRefreshChannel = 40283,
};

} // namespace qf
