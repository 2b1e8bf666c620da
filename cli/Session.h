#pragma once

#include "model/ChannelStore.h"
#include "platform/DataLock.h"

#include <optional>
#include <string>
#include <string_view>

namespace qf::cli {

// Whether a command only reads the data or may change it. Only writers take the data lock, so
// reading works while the GUI runs.
enum class Access {
    kRead,
    kWrite,
};

// The settings and the channel store that one command works on, opened and saved as the GUI
// opens them at start and saves them at exit.
class Session {
public:
    // Takes the data lock (writers only), opens the settings (below), removes what runs that
    // ended abruptly left half written (writers only) and loads the store from the data folder
    // of the settings' volume. A missing store file gives an empty store. A store file that
    // cannot be read is reported; readers stop there, while writers go on with an empty store,
    // whose first save moves the unreadable file aside. Answers false, after saying why on
    // standard error, when the command cannot go on.
    bool Open(Access access);
    // Only loads the settings (writing the defaults on a first run) and works out the store
    // file's path, for commands that do not need the store itself. False, after saying why, when
    // the settings' volume is not there.
    bool OpenSettings();

    ChannelStore& store() { return store_; }
    const std::u16string& volume() const { return store_.settings().storageVolume().str(); }
    const std::u16string& storePath() const { return store_.channelStorePath(); }

    // Writes the read states of modified channels into their cached feeds and saves the store
    // file, saying on standard error what went wrong or where an unreadable file was kept.
    bool SaveStore();
    bool SaveSettings();

private:
    bool LoadStoreFile(Access access);

    std::optional<DataLock> lock_;
    ChannelStore store_;
};

// A line of UTF-16 text on standard error, as UTF-8.
void PrintError(std::u16string_view message);
// A line of UTF-8 text on standard output.
void PrintLine(std::string_view text);

} // namespace qf::cli
