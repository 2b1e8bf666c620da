#include "ui/App.h"

#include "model/ViewerSettings.h"
#include "net/DataFolderTidy.h"
#include "net/RefreshEngine.h"
#include "platform/Files.h"
#include "store/ChannelStoreFile.h"
#include "store/StoreBackups.h"
#include "ui/AboutBox.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/HtmlView.h"
#include "ui/MainWindow.h"
#include "ui/MenuTables.h"
#include "ui/PrivateMessages.h"
#include "ui/QtText.h"
#include "ui/SoftKeyBar.h"
#include "ui/StoryScreen.h"
#include "ui/WaitCursor.h"
#include "ui/WelcomeScreen.h"

#include <QDesktopServices>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>

namespace qf::ui {

namespace {

constexpr int kAutoUpdatePeriodMs = 30000;

UserDialogs WithDefaults(UserDialogs dialogs) {
    if (!dialogs.ask) {
        dialogs.ask = [](const QString& question) {
            return QMessageBox::question(nullptr, QStringLiteral("Quillfeed"), question,
                                         QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
        };
    }
    if (!dialogs.tell) {
        dialogs.tell = [](const QString& message) {
            QMessageBox::warning(nullptr, QStringLiteral("Quillfeed"), message);
        };
    }
    if (!dialogs.about) {
        dialogs.about = [] { ShowAboutBox(nullptr); };
    }
    if (!dialogs.run) {
        dialogs.run = [](QDialog& dialog) { return dialog.exec(); };
    }
    if (!dialogs.open) {
        dialogs.open = [](const QUrl& address) { return QDesktopServices::openUrl(address); };
    }
    return dialogs;
}

} // namespace

App::App(DeviceFamily family, UserDialogs dialogs)
    : family_(family), dialogs_(WithDefaults(std::move(dialogs))), handOvers_([this] {
          PostPrivateMessage(mainWindow_.get(),
                             std::make_unique<PrivateMessageEvent>(kHandOverEvent));
      }),
      handOverToken_(std::make_shared<int>(0)) {}

App::~App() {
    // The workers are stopped first; work they still handed over never reaches the screens.
    handOverToken_.reset();
    engine_.reset();
    mainWindow_.reset();
}

bool App::Start() {
    if (!LoadSettings(store_.settings())) {
        SaveSettings(store_.settings());
    }
    engine_ = std::make_unique<RefreshEngine>(store_, *this);
    mainWindow_ = std::make_unique<MainWindow>(*this);
    CreateScreens();
    BuildContextMenu();
    // The lock is held from here on, so whatever is half written was left by an earlier run.
    TidyDataFolder(volume(), std::filesystem::file_time_type::clock::now());
    const std::u16string& path = KeptStorePath(store_);
    if (!path.empty() && FileExists(path)) {
        LoadStoreAtStart();
    } else {
        // A first store counts its ids from 1, as an empty store file would.
        store_.RecomputeNextId();
        welcomeScreen_->ShowPage();
        SetScreen(kWelcomeScreen);
    }
    mainWindow_->show();
    // Without a window manager (a kiosk handheld) nobody else gives the window the keyboard.
    mainWindow_->activateWindow();
    return true;
}

void App::CreateScreens() {
    QObject* frame = mainWindow_.get();
    welcomeScreen_ = new WelcomeScreen(frame, family_, mainWindow_.get());
    channelsScreen_ = new ChannelsScreen(frame, store_, family_, mainWindow_.get());
    channelScreen_ = new ChannelScreen(frame, store_, family_, mainWindow_.get());
    storyScreen_ = new StoryScreen(frame, store_, mainWindow_.get());
    for (QWidget* screen :
         {static_cast<QWidget*>(welcomeScreen_), static_cast<QWidget*>(channelsScreen_),
          static_cast<QWidget*>(channelScreen_), static_cast<QWidget*>(storyScreen_)}) {
        mainWindow_->AddScreen(screen);
    }
    const ViewerSettings& settings = store_.settings();
    for (HtmlView* view : {welcomeScreen_->view(), storyScreen_->view()}) {
        view->SetTextSize(settings.shownTextSize());
        view->SetFitToScreen(settings.fitToScreen() != 0);
        view->SetClearType(settings.clearType() != 0);
    }
    for (HtmlView* view : {storyScreen_->view(), channelScreen_->banner()}) {
        view->SetLinkHandler([this](const QString& target) { OpenLink(target); });
    }
}

void App::BuildContextMenu() {
    contextMenu_ = new QMenu(mainWindow_.get());
    contextMenu_->setObjectName(QStringLiteral("ChannelContextMenu"));
    AddMenuEntries(contextMenu_, ChannelContextMenu(), [](QMenu*) {});
    connect(contextMenu_, &QMenu::aboutToShow, this, [this] { OnMenuPopup(contextMenu_, false); });
    connect(contextMenu_, &QMenu::triggered, this, [this](QAction* action) {
        if (const int command = CommandOf(action); command != 0) {
            OnCommand(kCtlNone, command);
        }
    });
}

void App::LoadStoreAtStart() {
    WaitCursor wait;
    const std::u16string path = KeptStorePath(store_);
    if (!LoadStore(store_, path)) {
        wait.Restore();
        OfferNewestBackup(path);
    }
    RefillChannels();
    SetScreen(kChannelsScreen);
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
        dialogs_.tell(failed);
        return;
    }
    const std::u16string& newest = backups.front();
    if (!dialogs_.ask(failed + QStringLiteral("\n\nRestore the newest backup, of %1?")
                                   .arg(ToQString(BackupDate(newest))))) {
        return;
    }
    std::u16string notice;
    WaitCursor wait;
    const bool restored = RestoreStore(store_, newest, &notice) == RestoreResult::kRestored &&
                          LoadStore(store_, path);
    wait.Restore();
    if (!notice.empty()) {
        dialogs_.tell(ToQString(notice));
    }
    if (!restored) {
        dialogs_.tell(QStringLiteral("Failed to restore the backup '%1'.").arg(ToQString(newest)));
    }
}

void App::RefillChannels() {
    channelsScreen_->FillList(store_.categoryId(), store_.newChannels() != 0);
}

void App::Finish() {
    SaveSettings(store_.settings());
}

QWidget* App::ScreenWidget(Screen screen) const {
    switch (screen) {
    case kWelcomeScreen:
        return welcomeScreen_;
    case kChannelsScreen:
        return channelsScreen_;
    case kChannelScreen:
        return channelScreen_;
    case kStoryScreen:
        return storyScreen_;
    default:
        return nullptr;
    }
}

std::u16string_view App::volume() const {
    return store_.settings().storageVolume().view();
}

void App::SetScreen(Screen screen) {
    if (screen == screen_ || ScreenWidget(screen) == nullptr) {
        return;
    }
    mainWindow_->softKeys()->Load(MenuBarFor(screen));
    mainWindow_->ShowScreen(ScreenWidget(screen));
    screen_ = screen;
}

void App::OnBack() {
    switch (screen_) {
    case kWelcomeScreen:
    case kChannelsScreen:
        mainWindow_->showMinimized();
        break;
    case kChannelScreen:
        SetScreen(kChannelsScreen);
        break;
    case kStoryScreen:
        SetScreen(kChannelScreen);
        break;
    default:
        break;
    }
}

void App::OnActivate() {
    if (hiddenForBrowser_) {
        mainWindow_->showNormal();
        hiddenForBrowser_ = false;
    }
    SoftKeyBar* softKeys = mainWindow_->softKeys();
    if (softKeys->isHidden()) {
        softKeys->Load(MenuBarFor(screen_));
        softKeys->show();
    }
}

void App::HideForBrowser() {
    hiddenForBrowser_ = true;
    // Minimised rather than hidden: a hidden window could not be brought back from the task bar.
    mainWindow_->showMinimized();
    mainWindow_->softKeys()->hide();
}

void App::OnDestroy() {
    contextMenu_->close();
    if (!store_.loaded()) {
        return;
    }
    WaitCursor wait;
    std::u16string notice;
    const bool saved = SaveAll(store_, &notice);
    SetScreen(kChannelsScreen);
    wait.Restore();
    if (!notice.empty()) {
        dialogs_.tell(ToQString(notice));
    }
    if (!saved) {
        dialogs_.tell(QStringLiteral("Failed to save Channels file '%1'.")
                          .arg(ToQString(store_.channelStorePath())));
    }
}

void App::OnAutoUpdateTimer() {
    const bool wasBusy = store_.refresh().busy();
    engine_->OnAutoUpdateTimer();
    if (!wasBusy && store_.refresh().busy()) {
        RefreshAllStarted();
    }
}

} // namespace qf::ui
