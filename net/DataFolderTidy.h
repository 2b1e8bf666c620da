#pragma once

#include <chrono>
#include <filesystem>
#include <string_view>

namespace qf {

// Story pictures are fetched again after this long, so that the picture folder does not grow
// with every story ever read.
inline constexpr std::chrono::hours kPictureKeepTime{24 * 30};

// Clears what earlier runs left in the data folder of `volume`: files whose writing a run that
// ended abruptly never finished, and story pictures older than kPictureKeepTime at `now`. Only
// for a program that holds the data lock, so that no other writer is halfway through a file.
void TidyDataFolder(std::u16string_view volume, std::filesystem::file_time_type now);

} // namespace qf
