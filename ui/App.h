#pragma once

#include "model/ChannelStore.h"
#include "ui/AppDialogs.h"
#include "ui/CommandIds.h"
#include "ui/DeviceFamily.h"

#include <QObject>
#include <memory>

class QMenu;
class QTimer;
class QWidget;

namespace qf {
class RefreshEngine;
} // namespace qf

namespace qf::ui {

class AppCommands;
class AppMenus;
class AppMessages;
class AppNavigation;
class AppRefresh;
class AppScreens;
class AppSync;
class MainWindow;
class PrivateMessageEvent;

// The application frame: owns the channel store, the refresh engine, the main window with its
// four screens, and the parts that run the commands, keep the menus, answer the private messages
// and show the refresh and the sync; loads the store at start and saves it and the settings at
// exit.
class App : public QObject {
    Q_OBJECT

public:
    explicit App(DeviceFamily family, UserDialogs dialogs = {});
    ~App() override;

    // Start-up after the single-instance check: settings (the defaults saved on a first run), the
    // main window and its screens, then the store file, which decides the first screen.
    bool Start();
    // After the event loop: saves the settings.
    void Finish();

    // What the main window passes on.
    bool OnCommand(int sourceControl, int command);
    void OnMenuPopup(QMenu* menu, bool fromMenuKey);
    void OnPrivateMessage(PrivateMessageEvent& event);
    // The Back key.
    void OnBack();
    // The main window is active or in sight again.
    void OnActivate();
    // The keyboard focus went into one of the side-by-side panes.
    void OnPaneFocused(const QWidget* pane);
    // The screens were put side by side, or back one at a time.
    void OnPanesPlaced();
    // Tab (`forward`) or Shift+Tab among the side-by-side panes.
    void OnStepPane(bool forward);
    // The main window is closing: the store is saved when it was loaded.
    void OnDestroy();

    MainWindow* mainWindow() const { return mainWindow_.get(); }

    // For tests, which reach everything else through the main window's widgets. The model's
    // state, which no widget shows whole; a screen put up over contents a test gave the screen
    // widget itself; and the engine, for a refresh that lands between a tap and its message.
    ChannelStore& store() { return store_; }
    void SetScreen(Screen screen);
    RefreshEngine& engine() { return *engine_; }

private:
    void CreateParts();
    void LoadStoreAtStart();
    void OfferNewestBackup(const std::u16string& path);
    void OnAutoUpdateTimer();

    DeviceFamily family_;
    AppDialogs dialogs_;
    ChannelStore store_;
    std::unique_ptr<MainWindow> mainWindow_;
    std::unique_ptr<AppScreens> screens_;
    // Outlives the engine, whose workers hand work over to it until the engine is gone.
    std::unique_ptr<AppRefresh> refresh_;
    std::unique_ptr<RefreshEngine> engine_;
    // Hands its result over through refresh_, so it goes first.
    std::unique_ptr<AppSync> sync_;
    std::unique_ptr<AppNavigation> navigation_;
    std::unique_ptr<AppCommands> commands_;
    std::unique_ptr<AppMenus> menus_;
    std::unique_ptr<AppMessages> messages_;
    QTimer* autoUpdateTimer_ = nullptr;
};

} // namespace qf::ui
