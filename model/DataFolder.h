#pragma once

#include "platform/WString.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qf {

// The data folder holds every file of the reader: the channel store, the cached feeds and the
// logos. It lies on the storage volume of the settings: main memory ("\") or a storage card
// ("\" + the card's name). Paths are UTF-16 texts separated by "/".

inline constexpr std::u16string_view kDataFolderName = u"QFChannelsData";
inline constexpr std::u16string_view kChannelStoreFileName = u"QFChannels.opml";

// The data folder on `volume`; nullopt when the volume is not there.
std::optional<std::u16string> DataFolderOfVolume(std::u16string_view volume);

// `fileName` in the data folder of `volume`; nullopt for a null file name or when the volume is
// not there.
std::optional<std::u16string> DataFilePath(std::u16string_view volume, const WString& fileName);

// The channel store file on `volume`. The store keeps the answer from its first request until the
// volume changes.
std::optional<std::u16string> ChannelStorePath(std::u16string_view volume);

// The number of storage cards.
int32_t StorageCardCount();
// The name of the card at `index`. The card walk this mirrors never counted its index down, so
// only index 0 finds a name and every other index fails; the settings and the Options dialog
// rely on it as it is.
std::optional<std::u16string> StorageCardName(int32_t index);

// Moves every file of the data folder on `oldVolume` into the data folder on `newVolume`,
// sub-folders included, then removes the emptied old folders. When any file cannot be moved, the
// files that were moved go back and the move fails, so the data is never split across volumes.
// Also fails when either volume is not there or one data folder lies inside the other. Storing
// the new volume in the settings is the caller's part.
bool MoveData(std::u16string_view oldVolume, std::u16string_view newVolume);

// The first step of a download into the data folder: the path of `fileName` there, with the
// folder that holds it created when it is missing. nullopt when no path can be given.
std::optional<std::u16string> PrepareDownloadPath(std::u16string_view volume,
                                                  const WString& fileName);

} // namespace qf
