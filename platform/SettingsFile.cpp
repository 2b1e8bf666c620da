#include "platform/SettingsFile.h"

#include "platform/AtomicFile.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/FsPath.h"
#include "platform/UserFolders.h"

#include <filesystem>
#include <system_error>

namespace qf {

std::optional<IniFile> ReadSettingsFile() {
    const auto path = SettingsFilePath();
    if (!path) {
        return std::nullopt;
    }
    std::error_code error;
    if (!std::filesystem::exists(*path, error)) {
        return error ? std::nullopt : std::optional<IniFile>(IniFile());
    }
    const auto bytes = ReadFileBytes(FromFsPath(*path));
    if (!bytes) {
        return std::nullopt;
    }
    return IniFile::Parse(*bytes);
}

bool UpdateSettingsFile(const std::function<void(IniFile&)>& change, bool ownerOnly) {
    const auto path = SettingsFilePath();
    auto file = ReadSettingsFile();
    if (!path || !file) {
        return false;
    }
    change(*file);
    return CreateParentDirectory(FromFsPath(*path)) &&
           WriteFileAtomically(*path, file->Text(), ownerOnly);
}

} // namespace qf
