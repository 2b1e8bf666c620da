#include "ui/AppSync.h"

#include "model/ChannelStore.h"
#include "net/RefreshEngine.h"
#include "sync/SyncAccount.h"
#include "sync/SyncRun.h"
#include "ui/AppDialogs.h"
#include "ui/AppRefresh.h"
#include "ui/AppScreens.h"
#include "ui/ChannelScreen.h"
#include "ui/ProgressBar.h"
#include "ui/QtText.h"
#include "ui/StoryScreen.h"
#include "ui/WaitCursor.h"

#include <QStringList>
#include <algorithm>

namespace qf::ui {

namespace {

QString JoinTexts(const std::vector<std::u16string>& texts, const QString& separator) {
    QStringList list;
    for (const std::u16string& text : texts) {
        list << ToQString(text);
    }
    return list.join(separator);
}

QString DoneText(const SyncReport& report) {
    QString text = QStringLiteral("Sync finished.\nChannels added here: %1, on the server: %2.\n"
                                  "Channels removed here: %3, on the server: %4.\n"
                                  "Read states sent: %5, received: %6.")
                       .arg(report.addedLocally)
                       .arg(report.addedOnServer)
                       .arg(report.removedLocally)
                       .arg(report.removedOnServer)
                       .arg(report.readStatesSent)
                       .arg(report.readStatesReceived);
    if (!report.kept.empty()) {
        text += QStringLiteral("\nKept, as they have unread stories, though the server dropped "
                               "them: %1.")
                    .arg(JoinTexts(report.kept, QStringLiteral(", ")));
    }
    // A subscription the server refused is tried again at the next sync.
    if (!report.errors.empty()) {
        text += QStringLiteral("\n") + JoinTexts(report.errors, QStringLiteral("\n"));
    }
    return text;
}

} // namespace

AppSync::AppSync(const Parts& parts)
    : store_(parts.store), screens_(parts.screens), refresh_(parts.refresh), engine_(parts.engine),
      dialogs_(parts.dialogs) {}

AppSync::~AppSync() {
    StopAndWait();
}

void AppSync::Start() {
    if (running()) {
        dialogs_.Tell(QStringLiteral("Please wait until the sync has finished."));
        return;
    }
    if (refresh_.running() || store_.refresh().busy() || engine_.HasRunningWorkers()) {
        dialogs_.Tell(QStringLiteral("Please wait until the refresh has finished."));
        return;
    }
    const std::optional<SyncAccount> account = LoadSyncAccount();
    if (!account) {
        dialogs_.Tell(QStringLiteral("Log in to a sync account in Options first."));
        return;
    }
    {
        // Channels not opened yet have their stories read from their cached feeds here.
        WaitCursor wait;
        run_ = SyncRun::Prepare(store_, *account, FeedDate::NowUtc());
    }
    if (!run_) {
        dialogs_.Tell(QStringLiteral("Sync failed."));
        return;
    }
    // No refresh runs, so a stop left from an earlier one must not end this sync at once.
    store_.refresh().Start();
    store_.refresh().ClearStopAndAbort();
    refresh_.SetSyncRunning(true);
    ShowProgress(u"Syncing", 0, 0);
    worker_ = std::jthread([this, run = run_.get()] { Exchange(*run); });
}

bool AppSync::StopAsked() const {
    return quitting_ || store_.refresh().stopRequested() || store_.refresh().abortRequested();
}

// The worker's whole work: only the pass and the stop flags are touched here.
void AppSync::Exchange(SyncRun& run) {
    const bool exchanged =
        run.Exchange([this] { return StopAsked(); },
                     [this](std::u16string_view stage, int32_t done, int32_t total) {
                         refresh_.HandOver([this, stage = std::u16string(stage), done, total] {
                             ShowProgress(stage, done, total);
                         });
                     });
    refresh_.HandOver([this, exchanged] { Finished(exchanged); });
}

void AppSync::ShowProgress(const std::u16string& stage, int32_t done, int32_t total) {
    if (!running()) {
        return;
    }
    QString text = ToQString(stage);
    if (total > 0) {
        text += QStringLiteral(" %1/%2").arg(done).arg(total);
    }
    for (ProgressBar* bar : screens_.progressBars()) {
        bar->SetText(text);
        bar->SetRange(0, std::max(total, 0));
        bar->SetPosition(std::clamp(done, 0, std::max(total, 0)));
    }
}

void AppSync::Finished(bool exchanged) {
    // A sync stopped at the end of the run has handed over too; nothing is left to apply.
    if (!running()) {
        return;
    }
    worker_.join();
    bool applied = false;
    if (exchanged) {
        WaitCursor wait;
        const std::vector<ChannelMark> before = Marks();
        applied = run_->Finish(store_);
        FollowChanges(before);
    }
    const bool stopped = StopAsked();
    store_.refresh().Finish();
    refresh_.SetSyncRunning(false);
    // A stop the user asked for needs no message; what came of any other sync does.
    if (applied || !stopped) {
        Report(applied);
    }
    run_.reset();
}

std::vector<AppSync::ChannelMark> AppSync::Marks() const {
    std::vector<ChannelMark> marks;
    for (const auto& category : store_.categories()) {
        for (const auto& channel : category->channels()) {
            if (channel) {
                marks.emplace_back(channel.get(), channel->id());
            }
        }
    }
    std::ranges::sort(marks);
    return marks;
}

void AppSync::FollowChanges(const std::vector<ChannelMark>& before) {
    const std::vector<ChannelMark> after = Marks();
    std::vector<ChannelMark> removed;
    std::ranges::set_difference(before, after, std::back_inserter(removed));
    const auto gone = [&removed](const Channel* channel) {
        return std::ranges::any_of(
            removed, [channel](const ChannelMark& mark) { return mark.first == channel; });
    };
    for (const ChannelMark& mark : removed) {
        refresh_.ForgetChannel(mark.first);
    }
    const bool storyGone = gone(screens_.story().channel());
    const bool channelGone = gone(screens_.channel().channel());
    if (storyGone) {
        screens_.story().Forget();
    }
    if (channelGone) {
        screens_.channel().ShowChannel(nullptr);
    } else if (Channel* shown = screens_.channel().channel()) {
        screens_.channel().ShowChannel(shown);
    }
    screens_.RefillChannels();
    if (storyGone || channelGone) {
        screens_.Show(kChannelsScreen);
    }
}

void AppSync::Report(bool applied) {
    const SyncReport& report = run_->report();
    if (applied) {
        dialogs_.Tell(DoneText(report));
    } else if (run_->loginRejected()) {
        dialogs_.Tell(QStringLiteral("The server no longer accepts the login. Log in again in "
                                     "Options."));
    } else if (report.errors.empty()) {
        dialogs_.Tell(QStringLiteral("Sync failed."));
    } else {
        dialogs_.Tell(
            QStringLiteral("Sync failed: %1").arg(JoinTexts(report.errors, QStringLiteral("\n"))));
    }
}

void AppSync::StopAndWait() {
    if (!running()) {
        return;
    }
    quitting_ = true;
    worker_.join();
    quitting_ = false;
    run_.reset();
    store_.refresh().Finish();
    refresh_.SetSyncRunning(false);
}

} // namespace qf::ui
