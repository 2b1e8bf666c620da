#include "model/DataFolder.h"

#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/FsPath.h"
#include "platform/Volumes.h"

#include <algorithm>

namespace qf {

namespace {

// Whether `inner` is `outer` or lies inside it, after following links in both.
bool IsWithin(const std::u16string& inner, const std::u16string& outer) {
    std::error_code innerError;
    std::error_code outerError;
    const auto innerPath = std::filesystem::weakly_canonical(ToFsPath(inner), innerError);
    const auto outerPath = std::filesystem::weakly_canonical(ToFsPath(outer), outerError);
    if (innerError || outerError) {
        return false;
    }
    return std::mismatch(outerPath.begin(), outerPath.end(), innerPath.begin(), innerPath.end())
               .first == outerPath.end();
}

// Whether any file (or link) is left anywhere in the folder tree.
bool HoldsFiles(std::u16string_view folder) {
    return std::ranges::any_of(ListDirectory(folder), [folder](const DirectoryEntry& entry) {
        return !entry.isDirectory || HoldsFiles(JoinPath(folder, entry.name));
    });
}

} // namespace

std::optional<std::u16string> DataFolderOfVolume(std::u16string_view volume) {
    const auto folder = VolumeFolder(volume);
    if (!folder) {
        return std::nullopt;
    }
    return JoinPath(FromFsPath(*folder), kDataFolderName);
}

std::optional<std::u16string> DataFilePath(std::u16string_view volume, const WString& fileName) {
    if (fileName.isNull()) {
        return std::nullopt;
    }
    const auto folder = DataFolderOfVolume(volume);
    if (!folder) {
        return std::nullopt;
    }
    return JoinPath(*folder, fileName.view());
}

std::optional<std::u16string> ChannelStorePath(std::u16string_view volume) {
    return DataFilePath(volume, WString(kChannelStoreFileName));
}

int32_t StorageCardCount() {
    int32_t count = 0;
    for (const StorageCard& card : ListStorageCards()) {
        if (!card.name.empty()) {
            ++count;
        }
    }
    return count;
}

std::optional<std::u16string> StorageCardName(int32_t index) {
    const auto cards = ListStorageCards();
    if (index != 0 || cards.empty()) {
        return std::nullopt;
    }
    return cards.front().name;
}

bool MoveData(std::u16string_view oldVolume, std::u16string_view newVolume) {
    const auto oldFolder = DataFolderOfVolume(oldVolume);
    const auto newFolder = DataFolderOfVolume(newVolume);
    if (!oldFolder || !newFolder) {
        return false;
    }
    // Two volumes may lead to the same folder, where copying a file onto itself and deleting the
    // "original" would lose it: then there is nothing to move. Nor can a folder be moved into a
    // folder inside it.
    if (IsWithin(*newFolder, *oldFolder)) {
        const bool sameFolder = IsWithin(*oldFolder, *newFolder);
        return sameFolder;
    }
    MoveDirectoryContents(*oldFolder, *newFolder);
    if (HoldsFiles(*oldFolder)) {
        // Something would not move (a full card, a folder that cannot be made): what did move
        // goes back, so that the store and its cached feeds stay together on the old volume.
        MoveDirectoryContents(*newFolder, *oldFolder);
        return false;
    }
    RemoveDirectoryTree(*oldFolder);
    return true;
}

std::optional<std::u16string> PrepareDownloadPath(std::u16string_view volume,
                                                  const WString& fileName) {
    auto path = DataFilePath(volume, fileName);
    if (!path) {
        return std::nullopt;
    }
    const auto cut = path->rfind(u'/');
    if (cut != std::u16string::npos && !FileExists(std::u16string_view(*path).substr(0, cut))) {
        CreateParentDirectory(*path);
    }
    return path;
}

} // namespace qf
