#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qf {

// A removable volume that can hold the data folder; its volume path is "\" + name.
struct StorageCard {
    std::u16string name; // the folder name of its mount point
    std::filesystem::path mountPoint;
};

// The removable volumes mounted under /media/$USER, /run/media/$USER and /media, in name order.
// $QUILLFEED_CARDS, when set, names a folder whose sub-folders are the cards instead.
std::vector<StorageCard> ListStorageCards();

// The folder that holds the data folder on a volume: main memory "\" gives MainMemoryFolder(), a
// card "\NAME" the folder "Quillfeed" on that card. Answers nullopt for any other text and for a
// card that is not mounted.
std::optional<std::filesystem::path> VolumeFolder(std::u16string_view volume);

} // namespace qf
