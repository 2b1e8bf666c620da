#include "cli/Session.h"

#include "model/ViewerSettings.h"
#include "net/DataFolderTidy.h"
#include "platform/Files.h"
#include "platform/Text.h"
#include "store/ChannelStoreFile.h"
#include "sync/SyncRun.h"

#include <cstdio>

namespace qf::cli {

bool Session::Open(Access access) {
    if (access == Access::kWrite) {
        lock_.emplace();
        if (!lock_->held()) {
            PrintError(lock_->errorText());
            return false;
        }
    }
    if (!OpenSettings()) {
        return false;
    }
    if (access == Access::kWrite) {
        // Only the holder of the lock may do this: no other writer is halfway through a file.
        RemoveUnfinishedWrites(volume());
    }
    return LoadStoreFile(access);
}

bool Session::OpenSettings() {
    // A settings file that cannot be written is reported, but reading and changing the store
    // work all the same.
    if (!LoadSettings(store_.settings())) {
        SaveSettings();
    }
    if (KeptStorePath(store_).empty()) {
        PrintError(u"The storage volume '" + volume() + u"' of the settings is not there.");
        return false;
    }
    return true;
}

bool Session::LoadStoreFile(Access access) {
    const std::u16string& path = store_.channelStorePath();
    if (FileExists(path) && !LoadStore(store_, path)) {
        PrintError(OpenStoreFailedText(path));
        if (access == Access::kRead) {
            return false;
        }
    }
    // A store that starts empty counts its ids from 1, as an empty store file would load, so the
    // first channel keeps its id (and with it its cached file) across runs.
    if (store_.nextId() == 0) {
        store_.RecomputeNextId();
    }
    return true;
}

bool Session::SaveStore() {
    // Read states changed by this command wait in the sync queue with their time.
    QueueLocalChanges(store_, FeedDate::NowUtc());
    std::u16string notice;
    const bool saved = SaveAll(store_, &notice);
    if (!notice.empty()) {
        PrintError(notice);
    }
    if (!saved) {
        PrintError(u"Failed to save Channels file '" + store_.channelStorePath() + u"'.");
    }
    return saved;
}

bool Session::SaveSettings() {
    if (!qf::SaveSettings(store_.settings())) {
        PrintError(u"Failed to save the settings.");
        return false;
    }
    return true;
}

void PrintError(std::u16string_view message) {
    std::fprintf(stderr, "%s\n", Utf16ToUtf8(message).c_str());
}

void PrintLine(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
}

} // namespace qf::cli
