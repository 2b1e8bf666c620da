#include "cli/Commands.h"
#include "cli/Json.h"
#include "cli/Session.h"
#include "platform/FsPath.h"
#include "platform/Text.h"
#include "store/StoreBackups.h"

#include <filesystem>
#include <string>

namespace qf::cli {

namespace {

// Lists the backups of the channels file, or puts one of them (or any channels file) in its
// place.
class RestoreCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("restore");
        app.description("List the backups of the channels file, or put one (or another "
                        "channels file) in its place, keeping the current one as a backup");
        CLI::Option* file = app.add_option("file", file_, "Channels file to restore");
        CLI::Option* list =
            app.add_flag("--list", list_, "Print the backups, newest first, one path a line")
                ->excludes(file);
        app.add_flag("--json", json_, "With --list: print one JSON array of the paths")
            ->needs(list);
    }

    int Run() override {
        if (list_) {
            return ListBackups();
        }
        if (file_.empty()) {
            PrintError(u"restore: give a channels file or --list.");
            return kExitUsage;
        }
        return Restore();
    }

private:
    // Reading only: it works while another program holds the data, and when the channels file
    // itself cannot be read.
    int ListBackups() {
        Session session;
        if (!session.OpenSettings()) {
            return kExitFailed;
        }
        Json paths = Json::array();
        for (const std::u16string& backup : ListStoreBackups(session.storePath())) {
            paths.push_back(std::filesystem::absolute(ToFsPath(backup)).string());
        }
        if (json_) {
            PrintJson(paths);
        } else {
            for (const auto& path : paths) {
                PrintLine(path.get<std::string>());
            }
        }
        return kExitOk;
    }

    int Restore() {
        Session session;
        if (!session.Open(Access::kWrite)) {
            return kExitFailed;
        }
        const std::u16string file = Utf8ToUtf16(file_);
        std::u16string notice;
        const RestoreResult result = RestoreStore(session.store(), file, &notice);
        if (!notice.empty()) {
            PrintError(notice);
        }
        switch (result) {
        case RestoreResult::kRestored:
            return kExitOk;
        case RestoreResult::kNotAStore:
            PrintError(u"'" + file + u"' cannot be read as a channels file; nothing was changed.");
            return kExitFailed;
        case RestoreResult::kNotWritten:
        default:
            PrintError(u"Failed to restore '" + file + u"' as the Channels file '" +
                       session.storePath() + u"'.");
            return kExitFailed;
        }
    }

    std::string file_;
    bool list_ = false;
    bool json_ = false;
};

} // namespace

std::unique_ptr<Command> MakeRestoreCommand() {
    return std::make_unique<RestoreCommand>();
}

} // namespace qf::cli
