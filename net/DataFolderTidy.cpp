#include "net/DataFolderTidy.h"

#include "model/DataFolder.h"
#include "net/PictureFiles.h"
#include "platform/FsPath.h"
#include "platform/TempFile.h"
#include "platform/UserFolders.h"
#include "store/StoreBackups.h"

#include <optional>
#include <string>
#include <system_error>

namespace qf {

namespace {

bool IsLeftOverPart(const std::filesystem::path& file) {
    return file.filename().string().find(kPartSuffix) != std::string::npos;
}

// `keep` says whether a file stays; folders below `folder` are not visited.
template <typename Keep> void RemoveFilesIn(const std::filesystem::path& folder, Keep keep) {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_regular_file(ignored) && !keep(*entry)) {
            std::filesystem::remove(entry->path(), ignored);
        }
    }
}

std::optional<std::filesystem::path> DataFolderPath(std::u16string_view volume) {
    const auto dataFolder = DataFolderOfVolume(volume);
    return dataFolder ? std::optional(ToFsPath(*dataFolder)) : std::nullopt;
}

// The settings file shares its folder with other programs' files, so only its own parts go.
void RemoveUnfinishedSettings() {
    const auto settings = SettingsFilePath();
    if (!settings) {
        return;
    }
    const std::string partPrefix = settings->filename().string() + std::string(kPartSuffix);
    RemoveFilesIn(settings->parent_path(), [&partPrefix](const auto& entry) {
        return !entry.path().filename().string().starts_with(partPrefix);
    });
}

} // namespace

void RemoveUnfinishedWrites(std::u16string_view volume) {
    RemoveUnfinishedSettings();
    const auto folder = DataFolderPath(volume);
    if (!folder) {
        return;
    }
    const auto keepFinished = [](const auto& entry) { return !IsLeftOverPart(entry.path()); };
    for (const std::filesystem::path& inside :
         {*folder, *folder / ToFsPath(kPictureFolderName), *folder / ToFsPath(kBackupFolderName)}) {
        RemoveFilesIn(inside, keepFinished);
    }
}

void RemoveOldPictures(std::u16string_view volume, std::filesystem::file_time_type now) {
    const auto folder = DataFolderPath(volume);
    if (!folder) {
        return;
    }
    RemoveFilesIn(*folder / ToFsPath(kPictureFolderName), [now](const auto& entry) {
        std::error_code error;
        const auto written = entry.last_write_time(error);
        return error || now - written <= kPictureKeepTime;
    });
}

void TidyDataFolder(std::u16string_view volume, std::filesystem::file_time_type now) {
    RemoveUnfinishedWrites(volume);
    RemoveOldPictures(volume, now);
}

} // namespace qf
