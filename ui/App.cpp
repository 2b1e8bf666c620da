#include "ui/App.h"

#include "model/ViewerSettings.h"
#include "net/DataFolderTidy.h"
#include "net/RefreshEngine.h"
#include "platform/Files.h"
#include "store/ChannelStoreFile.h"
#include "store/StoreBackups.h"
#include "sync/SyncRun.h"
#include "ui/AppCommands.h"
#include "ui/AppMenus.h"
#include "ui/AppMessages.h"
#include "ui/AppNavigation.h"
#include "ui/AppRefresh.h"
#include "ui/AppScreens.h"
#include "ui/AppSync.h"
#include "ui/MainWindow.h"
#include "ui/QtText.h"
#include "ui/Theme.h"
#include "ui/WaitCursor.h"
#include "ui/WelcomeScreen.h"

#include <QTimer>

namespace qf::ui {

namespace {

constexpr int kAutoUpdatePeriodMs = 30000;

} // namespace

App::App(DeviceFamily family, UserDialogs dialogs)
    : family_(family), dialogs_(std::move(dialogs)) {}

App::~App() {
    // The workers are stopped first; work they still handed over never reaches the screens.
    if (refresh_) {
        refresh_->DropQueuedCompletions();
    }
    sync_.reset();
    engine_.reset();
    mainWindow_.reset();
}

bool App::Start() {
    if (!LoadSettings(store_.settings())) {
        SaveSettings(store_.settings());
    }
    ApplyTheme(store_.settings().shownTheme());
    mainWindow_ = std::make_unique<MainWindow>(*this);
    CreateParts();
    // The lock is held from here on, so whatever is half written was left by an earlier run.
    TidyDataFolder(store_.settings().storageVolume().view(),
                   std::filesystem::file_time_type::clock::now());
    const std::u16string& path = KeptStorePath(store_);
    if (!path.empty() && FileExists(path)) {
        LoadStoreAtStart();
    } else {
        // A first store counts its ids from 1, as an empty store file would.
        store_.RecomputeNextId();
        screens_->welcome().ShowPage();
        screens_->Show(kWelcomeScreen);
    }
    mainWindow_->show();
    // Without a window manager (a kiosk handheld) nobody else gives the window the keyboard.
    mainWindow_->activateWindow();
    return true;
}

void App::CreateParts() {
    screens_ = std::make_unique<AppScreens>(*mainWindow_, store_, family_);
    refresh_ = std::make_unique<AppRefresh>(store_, *screens_);
    engine_ = std::make_unique<RefreshEngine>(store_, *refresh_);
    sync_ =
        std::make_unique<AppSync>(AppSync::Parts{store_, *screens_, *refresh_, *engine_, dialogs_});
    navigation_ = std::make_unique<AppNavigation>(store_, *screens_, *refresh_, *engine_, dialogs_);
    commands_ = std::make_unique<AppCommands>(AppCommands::Parts{
        store_, *screens_, *navigation_, *refresh_, *engine_, *sync_, dialogs_, family_});
    menus_ = std::make_unique<AppMenus>(store_, *screens_,
                                        [this](int command) { OnCommand(kCtlNone, command); });
    messages_ =
        std::make_unique<AppMessages>(*screens_, *navigation_, *commands_, *menus_, *refresh_);
    screens_->SetLinkHandler([this](const QString& target) { navigation_->OpenLink(target); });
}

void App::LoadStoreAtStart() {
    WaitCursor wait;
    const std::u16string path = KeptStorePath(store_);
    if (!LoadStore(store_, path)) {
        wait.Restore();
        OfferNewestBackup(path);
    }
    screens_->RefillChannels();
    screens_->Show(kChannelsScreen);
    wait.Restore();
    // A Smartphone never updates by itself.
    if (!family_.smartphone) {
        autoUpdateTimer_ = new QTimer(this);
        autoUpdateTimer_->setObjectName(QString::number(100));
        connect(autoUpdateTimer_, &QTimer::timeout, this, &App::OnAutoUpdateTimer);
        autoUpdateTimer_->start(kAutoUpdatePeriodMs);
    }
}

// The store file could not be read: the user may take the newest backup in its place, restored
// as `quillfeed-cli restore` does it. Otherwise the list starts empty, and the unreadable file is
// moved aside by the first save.
void App::OfferNewestBackup(const std::u16string& path) {
    const QString failed = ToQString(OpenStoreFailedText(path));
    const std::vector<std::u16string> backups = ListStoreBackups(path);
    if (backups.empty()) {
        dialogs_.Tell(failed);
        return;
    }
    const std::u16string& newest = backups.front();
    if (!dialogs_.Ask(failed + QStringLiteral("\n\nRestore the newest backup, of %1?")
                                   .arg(ToQString(BackupDate(newest))))) {
        return;
    }
    std::u16string notice;
    WaitCursor wait;
    const bool restored = RestoreStore(store_, newest, &notice) == RestoreResult::kRestored &&
                          LoadStore(store_, path);
    wait.Restore();
    if (!notice.empty()) {
        dialogs_.Tell(ToQString(notice));
    }
    if (!restored) {
        dialogs_.Tell(QStringLiteral("Failed to restore the backup '%1'.").arg(ToQString(newest)));
    }
}

void App::Finish() {
    SaveSettings(store_.settings());
}

bool App::OnCommand(int sourceControl, int command) {
    return commands_->Run(sourceControl, command);
}

void App::OnMenuPopup(QMenu* menu, bool fromMenuKey) {
    menus_->OnPopup(menu, fromMenuKey);
}

void App::OnPrivateMessage(PrivateMessageEvent& event) {
    messages_->OnPrivateMessage(event);
}

void App::SetScreen(Screen screen) {
    screens_->Show(screen);
}

void App::OnBack() {
    screens_->Back();
}

void App::OnActivate() {
    screens_->Reactivate();
}

void App::OnPaneFocused(const QWidget* pane) {
    screens_->FollowFocus(pane);
}

void App::OnPanesPlaced() {
    // Also while the window is first laid out, before the parts exist.
    if (screens_ != nullptr && refresh_ != nullptr) {
        screens_->ShowProgress(refresh_->running());
    }
}

void App::OnStepPane(bool forward) {
    screens_->StepPane(forward);
}

void App::OnDestroy() {
    menus_->CloseChannelMenu();
    WaitCursor wait;
    // What a sync under way exchanged is not applied: the store is saved as it is, and the
    // local changes stay queued for the next sync.
    sync_->StopAndWait();
    if (!store_.loaded()) {
        return;
    }
    QueueLocalChanges(store_, FeedDate::NowUtc());
    std::u16string notice;
    const bool saved = SaveAll(store_, &notice);
    screens_->Show(kChannelsScreen);
    wait.Restore();
    if (!notice.empty()) {
        dialogs_.Tell(ToQString(notice));
    }
    if (!saved) {
        dialogs_.Tell(QStringLiteral("Failed to save Channels file '%1'.")
                          .arg(ToQString(store_.channelStorePath())));
    }
}

void App::OnAutoUpdateTimer() {
    const bool wasBusy = store_.refresh().busy();
    engine_->OnAutoUpdateTimer();
    if (!wasBusy && store_.refresh().busy()) {
        // The refresh saved the read states as it started.
        QueueLocalChanges(store_, FeedDate::NowUtc());
        refresh_->RefreshAllStarted();
    }
}

} // namespace qf::ui
