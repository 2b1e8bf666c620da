#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qf {

class ChannelStore;

// Copies of the channel store file, kept in the folder "Backups" beside it so that they move with
// the data: one for each local day on which the file was saved over, named
// "QFChannels-YYYY-MM-DD.opml". A copy kept on a day that has one already (before a restore)
// adds the time, "-HHMMSS". Only the newest kBackupsKept stay.

inline constexpr std::u16string_view kBackupFolderName = u"Backups";
inline constexpr std::size_t kBackupsKept = 7;

// The backups of the store file at `storePath`, newest first, as full paths.
std::vector<std::u16string> ListStoreBackups(std::u16string_view storePath);

// "YYYY-MM-DD", the local date on which a backup was made, from its name.
std::u16string BackupDate(std::u16string_view backupPath);

// Before a save over the store file at `storePath`: keeps a copy of it as today's backup unless
// today has one already, then lets the oldest beyond kBackupsKept go. Nothing is kept when there
// is no file yet. False when a copy was due but could not be made.
bool KeepDailyBackup(std::u16string_view storePath);

enum class RestoreResult {
    kRestored,
    // The file could not be read as a channel store; nothing was changed.
    kNotAStore,
    // The current store could not be kept as a backup, or the file not written in its place.
    kNotWritten,
};

// Puts the channel store file `file` (a backup, or any store file) in place of the store file
// kept in `store`: the file must read as a channel store; the current file is kept first, as a
// backup (or moved aside when the store could not read it, with `notice` saying where); then it
// is replaced in one step, and the cached feeds and logos of channels that the restored store
// does not hold are deleted. The store in memory is left as it was, to be loaded anew.
RestoreResult RestoreStore(ChannelStore& store, std::u16string_view file,
                           std::u16string* notice = nullptr);

} // namespace qf
