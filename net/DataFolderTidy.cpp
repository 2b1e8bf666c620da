#include "net/DataFolderTidy.h"

#include "model/DataFolder.h"
#include "net/PictureFiles.h"
#include "platform/AtomicFile.h"
#include "platform/TempFile.h"

#include <filesystem>
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

} // namespace

void TidyDataFolder(std::u16string_view volume, std::filesystem::file_time_type now) {
    const auto dataFolder = DataFolderOfVolume(volume);
    if (!dataFolder) {
        return;
    }
    const std::filesystem::path folder = ToFsPath(*dataFolder);
    RemoveFilesIn(folder, [](const auto& entry) { return !IsLeftOverPart(entry.path()); });
    RemoveFilesIn(folder / ToFsPath(kPictureFolderName), [now](const auto& entry) {
        std::error_code error;
        const auto written = entry.last_write_time(error);
        return !IsLeftOverPart(entry.path()) && (error || now - written <= kPictureKeepTime);
    });
}

} // namespace qf
