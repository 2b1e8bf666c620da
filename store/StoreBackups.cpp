#include "store/StoreBackups.h"

#include "model/CachedFileNames.h"
#include "model/ChannelStore.h"
#include "model/FeedDate.h"
#include "parse/XmlDocument.h"
#include "platform/AtomicFile.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/FsPath.h"
#include "platform/Text.h"
#include "store/ChannelStoreFile.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <set>
#include <utility>

namespace qf {

namespace {

constexpr char16_t kStampSeparator = u'-';
// "YYYY-MM-DD": the separators stand at these places, digits everywhere else.
constexpr std::size_t kDateLength = 10;
constexpr std::size_t kDateSeparators[] = {4, 7};

// How the backups of one store file are named: "<stem>-<stamp><extension>", where the stamp
// starts with the date.
struct BackupNames {
    explicit BackupNames(std::u16string_view storePath) {
        const std::filesystem::path file = ToFsPath(storePath);
        folder = JoinPath(FromFsPath(file.parent_path()), kBackupFolderName);
        prefix = FromFsPath(file.stem()) + kStampSeparator;
        extension = FromFsPath(file.extension());
    }

    std::u16string PathOf(std::u16string_view stamp) const {
        return JoinPath(folder, prefix + std::u16string(stamp) + extension);
    }

    // The stamp of a backup's file name; empty for any other file.
    std::u16string_view StampOf(std::u16string_view name) const {
        if (name.size() < prefix.size() + kDateLength + extension.size() ||
            !name.starts_with(prefix) || !name.ends_with(extension)) {
            return {};
        }
        const std::u16string_view stamp =
            name.substr(prefix.size(), name.size() - prefix.size() - extension.size());
        return IsDate(stamp.substr(0, kDateLength)) &&
                       (stamp.size() == kDateLength || stamp[kDateLength] == kStampSeparator)
                   ? stamp
                   : std::u16string_view();
    }

    std::u16string folder;
    std::u16string prefix;
    std::u16string extension;

private:
    static bool IsDate(std::u16string_view text) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            const bool separator =
                std::ranges::find(kDateSeparators, i) != std::end(kDateSeparators);
            if (separator ? text[i] != kStampSeparator : (text[i] < u'0' || text[i] > u'9')) {
                return false;
            }
        }
        return true;
    }
};

std::u16string Digits(const char* format, int a, int b, int c) {
    char text[32];
    std::snprintf(text, sizeof text, format, a, b, c);
    return AsciiToUtf16(text);
}

std::u16string DateStamp(const SystemTime& time) {
    return Digits("%04d-%02d-%02d", time.year, time.month, time.day);
}

// Today's date and the time to the second; a stamp already taken (two copies in one second)
// gets "-2", "-3", ..., which still sorts after it.
std::u16string FreeTimeStamp(const BackupNames& names, const SystemTime& time) {
    const std::u16string base = DateStamp(time) + kStampSeparator +
                                Digits("%02d%02d%02d", time.hour, time.minute, time.second);
    std::u16string stamp = base;
    for (int number = 2; FileExists(names.PathOf(stamp)); ++number) {
        stamp = base + kStampSeparator + AsciiToUtf16(std::to_string(number));
    }
    return stamp;
}

// The backups as (stamp, path), newest first. A later stamp of the same day is longer, so the
// plain text order of the stamps is their order in time.
std::vector<std::pair<std::u16string, std::u16string>> ListBackups(const BackupNames& names) {
    std::vector<std::pair<std::u16string, std::u16string>> backups;
    for (const DirectoryEntry& entry : ListDirectory(names.folder)) {
        const std::u16string_view stamp = names.StampOf(entry.name);
        if (!entry.isDirectory && !stamp.empty()) {
            backups.emplace_back(stamp, JoinPath(names.folder, entry.name));
        }
    }
    std::ranges::sort(backups, std::greater<>());
    return backups;
}

void DropOldestBackups(const BackupNames& names) {
    const auto backups = ListBackups(names);
    for (std::size_t i = kBackupsKept; i < backups.size(); ++i) {
        DeleteFile(backups[i].second);
    }
}

// Copies the store file into the backup folder: as today's backup, or, when today has one and
// `evenIfTodayHasOne`, under today's date and time. Nothing to do without a store file.
bool KeepBackup(std::u16string_view storePath, bool evenIfTodayHasOne) {
    if (!FileExists(storePath)) {
        return true;
    }
    const BackupNames names(storePath);
    const SystemTime now = FeedDate::NowLocal();
    std::u16string backup = names.PathOf(DateStamp(now));
    if (FileExists(backup)) {
        if (!evenIfTodayHasOne) {
            return true;
        }
        backup = names.PathOf(FreeTimeStamp(names, now));
    }
    if (!CreateDirectoryPath(names.folder) || !CopyFile(storePath, backup)) {
        return false;
    }
    DropOldestBackups(names);
    return true;
}

std::set<int32_t> ChannelIds(const ChannelStore& store) {
    std::set<int32_t> ids;
    for (const auto& category : store.categories()) {
        for (const auto& channel : category->channels()) {
            ids.insert(channel->id());
        }
    }
    return ids;
}

// Deletes the cached feeds and logos in `folder` of channels that are not among `kept`.
void DropCachedFilesOfOthers(std::u16string_view folder, const std::set<int32_t>& kept) {
    for (const DirectoryEntry& entry : ListDirectory(folder)) {
        const auto owner = entry.isDirectory ? std::nullopt : ChannelIdOfCachedFile(entry.name);
        if (owner && !kept.contains(*owner)) {
            DeleteFile(JoinPath(folder, entry.name));
        }
    }
}

} // namespace

std::vector<std::u16string> ListStoreBackups(std::u16string_view storePath) {
    std::vector<std::u16string> paths;
    for (auto& backup : ListBackups(BackupNames(storePath))) {
        paths.push_back(std::move(backup.second));
    }
    return paths;
}

std::u16string BackupDate(std::u16string_view backupPath) {
    const std::u16string name = FromFsPath(ToFsPath(backupPath).filename());
    const std::size_t start = name.find(kStampSeparator);
    return start == std::u16string::npos ? std::u16string() : name.substr(start + 1, kDateLength);
}

bool KeepDailyBackup(std::u16string_view storePath) {
    return KeepBackup(storePath, false);
}

RestoreResult RestoreStore(ChannelStore& store, std::u16string_view file, std::u16string* notice) {
    // The bytes are read once, so that what was checked is what is written.
    const auto bytes = ReadFileBytes(file);
    XmlDocument document;
    ChannelStore restored;
    if (!bytes || !document.LoadBytes(*bytes) || !ReadStoreDocument(document, restored)) {
        return RestoreResult::kNotAStore;
    }
    const std::u16string path = KeptStorePath(store);
    if (path.empty() || !CreateParentDirectory(path) ||
        !MoveUnreadableStoreAside(store, path, notice) || !KeepBackup(path, true) ||
        !WriteFileAtomically(ToFsPath(path), *bytes)) {
        return RestoreResult::kNotWritten;
    }
    DropCachedFilesOfOthers(FromFsPath(ToFsPath(path).parent_path()), ChannelIds(restored));
    return RestoreResult::kRestored;
}

} // namespace qf
