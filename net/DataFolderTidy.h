#pragma once

#include <chrono>
#include <filesystem>
#include <string_view>

namespace qf {

// What earlier runs left behind. Only for a program that holds the data lock, so that no other
// writer is halfway through one of these files.

// Story pictures are fetched again after this long, so that the picture folder does not grow
// with every story ever read.
inline constexpr std::chrono::hours kPictureKeepTime{24 * 30};

// Removes the files whose writing a run that ended abruptly never finished: in the data folder
// of `volume`, its picture and backup folders, and beside the settings file (that one's own).
void RemoveUnfinishedWrites(std::u16string_view volume);

// Removes story pictures older than kPictureKeepTime at `now`.
void RemoveOldPictures(std::u16string_view volume, std::filesystem::file_time_type now);

// Both of the above, as the GUI does at start.
void TidyDataFolder(std::u16string_view volume, std::filesystem::file_time_type now);

} // namespace qf
