#include "cli/Commands.h"
#include "cli/Json.h"
#include "cli/ProgressLine.h"
#include "cli/Session.h"
#include "cli/StopOnInterrupt.h"
#include "net/RefreshObserver.h"
#include "platform/Text.h"
#include "sync/SyncRun.h"

#include <string>

namespace qf::cli {

namespace {

std::string Count(int32_t count) {
    return std::to_string(count);
}

// One two-way pass with the account's server: subscriptions and read states.
class SyncCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("sync");
        app.description("Sync subscriptions and read states with the account's server");
        app.add_flag("--json", json_, "Print the counts as JSON");
    }

    int Run() override {
        const std::optional<SyncAccount> account = LoadSyncAccount();
        if (!account) {
            PrintError(u"No sync account; log in with: quillfeed-cli account login URL USER");
            return kExitFailed;
        }
        Session session;
        if (!session.Open(Access::kWrite)) {
            return kExitFailed;
        }
        ChannelStore& store = session.store();
        const auto run = SyncRun::Prepare(store, *account, FeedDate::NowUtc());
        const bool synced = Exchange(*run, store) && run->Finish(store);
        const SyncReport& report = run->report();
        for (const auto& error : report.errors) {
            PrintError(error);
        }
        if (run->loginRejected()) {
            PrintError(u"Log in again with: quillfeed-cli account login URL USER");
        }
        if (json_) {
            PrintSummary(report);
        } else if (synced) {
            PrintLines(report);
        }
        return synced && report.errors.empty() ? kExitOk : kExitFailed;
    }

private:
    static bool Exchange(SyncRun& run, ChannelStore& store) {
        ProgressLine line;
        const StopOnInterrupt stop(store);
        const bool exchanged =
            run.Exchange([&store] { return store.refresh().stopRequested(); },
                         [&line](std::u16string_view stage, int32_t done, int32_t total) {
                             RefreshProgress progress;
                             progress.title = u"Sync";
                             progress.stageText = stage;
                             progress.bytesSoFar = done;
                             progress.totalBytes = total > 0 ? total : -1;
                             line.Report(progress);
                         });
        line.Finish();
        if (stop.interrupted()) {
            PrintError(u"Sync stopped.");
        }
        return exchanged;
    }

    static void PrintLines(const SyncReport& report) {
        PrintLine("Subscriptions: " + Count(report.addedLocally) + " added here, " +
                  Count(report.addedOnServer) + " added on the server, " +
                  Count(report.removedLocally) + " removed here, " + Count(report.removedOnServer) +
                  " removed on the server");
        PrintLine("Read states: " + Count(report.readStatesSent) + " sent, " +
                  Count(report.readStatesReceived) + " received");
        for (const auto& title : report.kept) {
            PrintLine("Kept '" + Utf16ToUtf8(title) +
                      "': removed on the server, but it has unread stories");
        }
    }

    static void PrintSummary(const SyncReport& report) {
        Json kept = Json::array();
        for (const auto& title : report.kept) {
            kept.push_back(Utf16ToUtf8(title));
        }
        Json errors = Json::array();
        for (const auto& error : report.errors) {
            errors.push_back(Utf16ToUtf8(error));
        }
        PrintJson(Json{{"subscriptions",
                        {{"addedLocally", report.addedLocally},
                         {"addedOnServer", report.addedOnServer},
                         {"removedLocally", report.removedLocally},
                         {"removedOnServer", report.removedOnServer},
                         {"kept", report.kept.size()}}},
                       {"readStates",
                        {{"sent", report.readStatesSent}, {"received", report.readStatesReceived}}},
                       {"errors", report.errors.size()},
                       {"keptChannels", kept},
                       {"errorTexts", errors}});
    }

    bool json_ = false;
};

} // namespace

std::unique_ptr<Command> MakeSyncCommand() {
    return std::make_unique<SyncCommand>();
}

} // namespace qf::cli
