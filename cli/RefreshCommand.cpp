#include "cli/Commands.h"
#include "cli/Json.h"
#include "cli/ProgressLine.h"
#include "cli/Session.h"
#include "cli/StopOnInterrupt.h"
#include "net/OwnerQueue.h"
#include "net/RefreshEngine.h"
#include "platform/Text.h"

#include <chrono>
#include <string>
#include <vector>

namespace qf::cli {

namespace {

// How long the owner loop waits for work before it looks again.
constexpr auto kOwnerWait = std::chrono::milliseconds(200);

// The screens' part in a refresh, played by the command: hand-overs are run by the command's own
// loop on the main thread, and every channel that ends its update gets its result line.
class CommandObserver : public RefreshObserver {
public:
    explicit CommandObserver(ProgressLine& line) : line_(line) {}

    void HandOver(std::function<void()> work) override { queue_.Post(std::move(work)); }
    void ReportProgress(const RefreshProgress& progress) override { line_.Report(progress); }
    void RedrawChannel(const Channel& channel) override {
        if (channel.state() != kChannelUpdating) {
            ended_.push_back(&channel);
        }
    }
    // Neither updated nor failed: no result line.
    void UpdateAbandoned(const Channel&) override {}
    void RefreshAllFinished() override { allFinished_ = true; }

    // Runs the hand-overs until the refresh of all channels has finished.
    void RunUntilFinished() {
        while (!allFinished_) {
            queue_.WaitAndRun(kOwnerWait);
            TakeEnded();
        }
    }
    // Takes in the channels whose update ended since the last call, in that order. A channel's
    // error text is set after its row was redrawn, so results are taken once a hand-over is done.
    void TakeEnded() {
        std::vector<const Channel*> ended = std::move(ended_);
        ended_.clear();
        for (const Channel* channel : ended) {
            results_.push_back(channel);
            if (onEnded) {
                onEnded(*channel);
            }
        }
    }

    const std::vector<const Channel*>& results() const { return results_; }
    std::function<void(const Channel&)> onEnded;

private:
    ProgressLine& line_;
    OwnerQueue queue_;
    std::vector<const Channel*> ended_;
    std::vector<const Channel*> results_;
    bool allFinished_ = false;
};

const WString& ShownTitle(const Channel& channel) {
    return channel.title().empty() ? channel.xmlUrl() : channel.title();
}

// "Title: 50 items, 3 unread", or "Title: <error> (<when>)" after a failure.
std::string ResultLine(const Channel& channel) {
    std::string line = ShownTitle(channel).toUtf8() + ": ";
    if (channel.state() != kChannelFailed) {
        return line + std::to_string(channel.itemCount()) + " items, " +
               std::to_string(channel.newItemCount()) + " unread";
    }
    const std::string error = channel.errorText().toUtf8();
    const auto at = error.find('@');
    if (at == std::string::npos) {
        return line + error;
    }
    return line + error.substr(0, at) + " (" + error.substr(at + 1) + ")";
}

Json ResultJson(const Channel& channel) {
    const bool updated = channel.state() != kChannelFailed;
    return Json{
        {"id", channel.id()},
        {"title", TextOrNull(channel.title())},
        {"xmlUrl", TextOrNull(channel.xmlUrl())},
        {"updated", updated},
        {"state", channel.state()},
        {"itemCount", channel.itemCount()},
        {"newItemCount", channel.newItemCount()},
        {"updateTime", DateText(channel.updateTime())},
        {"errorText", updated ? Json(nullptr) : TextOrNull(channel.errorText())},
        {"notModified", channel.server().notModified},
    };
}

Channel* FindChannelById(const ChannelStore& store, int32_t id) {
    for (const auto& category : store.categories()) {
        for (const auto& channel : category->channels()) {
            if (channel->id() == id) {
                return channel.get();
            }
        }
    }
    return nullptr;
}

class RefreshCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("refresh");
        app.description("Bring channels up to date: every channel, the due ones, or those given");
        CLI::Option* all = app.add_flag("--all", all_, "Every channel, as Refresh All does");
        CLI::Option* due =
            app.add_flag("--due", due_, "Only the due channels, as the automatic update does");
        CLI::Option* ids = app.add_option("id", ids_, "Ids of the channels to refresh");
        all->excludes(due)->excludes(ids);
        due->excludes(ids);
        app.add_flag("--json", json_, "Print a summary object per channel instead of lines");
    }

    int Run() override;

private:
    bool FindChosen(const ChannelStore& store, std::vector<Channel*>& chosen) const;
    bool RefreshChosen(ChannelStore& store, const std::vector<Channel*>& chosen,
                       RefreshEngine& engine, CommandObserver& observer, ProgressLine& line);
    void PrintSummary(const CommandObserver& observer, bool stopped) const;

    bool all_ = false;
    bool due_ = false;
    bool json_ = false;
    std::vector<int32_t> ids_;
};

int RefreshCommand::Run() {
    if (!all_ && !due_ && ids_.empty()) {
        PrintError(u"refresh: give --all, --due or the ids of channels.");
        return kExitUsage;
    }
    Session session;
    if (!session.Open(Access::kWrite)) {
        return kExitFailed;
    }
    ChannelStore& store = session.store();
    std::vector<Channel*> chosen;
    if (!FindChosen(store, chosen)) {
        return kExitFailed;
    }
    ProgressLine line;
    CommandObserver observer(line);
    if (!json_) {
        observer.onEnded = [&line](const Channel& channel) {
            line.PrintResult(ResultLine(channel));
        };
    }
    const StopOnInterrupt stop(store);
    bool succeeded = true;
    {
        RefreshEngine engine(store, observer);
        if (ids_.empty()) {
            succeeded = engine.StartRefreshAll(all_);
            if (succeeded) {
                observer.RunUntilFinished();
            } else {
                PrintError(u"refresh: the refresh could not be started.");
            }
        } else {
            succeeded = RefreshChosen(store, chosen, engine, observer, line);
        }
    }
    line.Finish();
    for (const Channel* channel : observer.results()) {
        succeeded = succeeded && channel->state() != kChannelFailed;
    }
    if (stop.interrupted()) {
        PrintError(u"Refresh stopped.");
    }
    const bool saved = session.SaveStore();
    if (json_) {
        PrintSummary(observer, stop.interrupted());
    }
    return succeeded && saved && !stop.interrupted() ? kExitOk : kExitFailed;
}

bool RefreshCommand::FindChosen(const ChannelStore& store, std::vector<Channel*>& chosen) const {
    for (const int32_t id : ids_) {
        Channel* channel = FindChannelById(store, id);
        if (channel == nullptr) {
            PrintError(u"refresh: there is no channel with the id " +
                       AsciiToUtf16(std::to_string(id)) + u".");
            return false;
        }
        chosen.push_back(channel);
    }
    return true;
}

// One channel after the other, each as "Refresh Channel" does, until a stop is asked for.
bool RefreshCommand::RefreshChosen(ChannelStore& store, const std::vector<Channel*>& chosen,
                                   RefreshEngine& engine, CommandObserver& observer,
                                   ProgressLine& line) {
    store.refresh().ClearStopAndAbort();
    bool succeeded = true;
    const auto count = static_cast<int32_t>(chosen.size());
    for (int32_t i = 0; i < count && !store.refresh().stopRequested(); ++i) {
        Channel& channel = *chosen[static_cast<std::size_t>(i)];
        if (channel.xmlUrl().empty()) {
            PrintError(ShownTitle(channel).str() + u": the channel has no feed address.");
            succeeded = false;
            continue;
        }
        line.SetPlace(i + 1, count);
        engine.UpdateChannel(channel, 0);
        observer.TakeEnded();
    }
    return succeeded;
}

void RefreshCommand::PrintSummary(const CommandObserver& observer, bool stopped) const {
    Json channels = Json::array();
    for (const Channel* channel : observer.results()) {
        channels.push_back(ResultJson(*channel));
    }
    PrintJson(Json{{"channels", channels}, {"stopped", stopped}});
}

} // namespace

std::unique_ptr<Command> MakeRefreshCommand() {
    return std::make_unique<RefreshCommand>();
}

} // namespace qf::cli
