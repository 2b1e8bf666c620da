#pragma once

#include "model/ChannelStore.h"
#include "net/RefreshObserver.h"
#include "ui/CommandIds.h"
#include "ui/DeviceFamily.h"
#include "ui/HandOverQueue.h"

#include <QObject>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <vector>

class QDialog;
class QMenu;
class QTimer;

namespace qf {
class NewsItem;
class RefreshEngine;
} // namespace qf

namespace qf::ui {

class ChannelScreen;
class ChannelsScreen;
class MainWindow;
class PrivateMessageEvent;
class StoryScreen;
class WaitCursor;
class WelcomeScreen;

// What the frame asks of the user and of the desktop, replaceable so that tests answer instead
// of a person.
struct UserDialogs {
    // A question with Yes and No; true for Yes.
    std::function<bool(const QString& question)> ask;
    // A message with an OK button.
    std::function<void(const QString& message)> tell;
    // The About box.
    std::function<void()> about;
    // Hands an address to the desktop (browser, help viewer); false when nothing took it.
    std::function<bool(const QUrl& address)> open;
    // Runs one of the program's own dialogs modally and answers its result code.
    std::function<int(QDialog& dialog)> run;
};

// The application frame: owns the channel store, the refresh engine and the main window with the
// four screens; switches screens, runs every command, answers the private messages of the screens
// and the refresh workers, keeps the menus' states, and saves the store and the settings at exit.
class App : public QObject, public RefreshObserver {
    Q_OBJECT

public:
    explicit App(DeviceFamily family, UserDialogs dialogs = {});
    ~App() override;

    // Start-up after the single-instance check: settings (the defaults saved on a first run), the
    // main window and its screens, then the store file, which decides the first screen.
    bool Start();
    // After the event loop: saves the settings.
    void Finish();

    Screen screen() const { return screen_; }
    void SetScreen(Screen screen);
    // Runs a command; true when it was handled. `sourceControl` is 0 for menus, soft keys and
    // accelerators.
    bool OnCommand(int sourceControl, int command);
    // Run before every menu and submenu opens: the menu state, then the check marks.
    // `fromMenuKey` for the soft key's "Menu" and its submenus.
    void OnMenuPopup(QMenu* menu, bool fromMenuKey);
    void UpdateMenuState(QMenu* menu);
    void UpdateMenuChecks(QMenu* menu, bool fromMenuKey);
    void OnPrivateMessage(PrivateMessageEvent& event);
    // The Back key.
    void OnBack();
    // The main window is active again.
    void OnActivate();
    // The main window is closing: the store is saved when it was loaded.
    void OnDestroy();
    void OnAutoUpdateTimer();

    ChannelStore& store() { return store_; }
    DeviceFamily family() const { return family_; }
    MainWindow* mainWindow() const { return mainWindow_.get(); }
    WelcomeScreen* welcomeScreen() const { return welcomeScreen_; }
    ChannelsScreen* channelsScreen() const { return channelsScreen_; }
    ChannelScreen* channelScreen() const { return channelScreen_; }
    StoryScreen* storyScreen() const { return storyScreen_; }
    QMenu* channelContextMenu() const { return contextMenu_; }
    QTimer* autoUpdateTimer() const { return autoUpdateTimer_; }
    RefreshEngine& engine() { return *engine_; }
    bool hiddenForBrowser() const { return hiddenForBrowser_; }

    // RefreshObserver: what the refresh workers ask of the screens.
    void HandOver(std::function<void()> work) override;
    void ReportProgress(const RefreshProgress& progress) override;
    void RedrawChannel(const Channel& channel) override;
    void PostRefreshDone(Channel& channel, RefreshCompletion completion) override;
    void RetireItems(Channel& channel, Channel::ItemList items) override;
    void RefreshAllFinished() override;

private:
    // Which handler runs a command on which screen (kNoScreen: on every screen).
    struct CommandRoute {
        Screen screen;
        int command;
        void (App::*handler)(int command);
    };
    static std::span<const CommandRoute> CommandRoutes();
    // Menu commands above 40100 choose a category first.
    void SelectCategoryByCommand(int command);

    void CreateScreens();
    void BuildContextMenu();
    void LoadStoreAtStart();
    void OfferNewestBackup(const std::u16string& path);
    void RefillChannels();
    QWidget* ScreenWidget(Screen screen) const;
    std::u16string_view volume() const;

    // Commands.
    void Quit(int command);
    void About(int command);
    void Help(int command);
    void Back(int command);
    void TextSize(int command);
    void ToggleClearType(int command);
    void ToggleFitToScreen(int command);
    void LeaveWelcome(int command);
    // Runs the add-channel wizard; true when it added to the store.
    bool AddChannels();
    void RefreshAll(int command);
    void NewChannel(int command);
    void DeleteChannel(int command);
    void ShowSelectedChannel(int command);
    void DownloadChannel(int command);
    void MarkAll(int command);
    void ToggleNewChannels(int command);
    void RefreshChannel(int command);
    void StepChannel(int command);
    void ToggleNewHeadlines(int command);
    void ChooseSort(int command);
    void MarkChannel(int command);
    void StepNews(int command);
    void ReadOnline(int command);
    // Runs one of the program's dialogs and gives the main window the keyboard back afterwards.
    int RunDialog(QDialog& dialog);
    void EditChannelProperties(int command);
    void ChooseOptions(int command);
    void NoAction(int command);

    // Private messages.
    void OpenChannel(Channel* channel);
    void ShowChannel(Channel* channel);
    void ShowStory(Channel* channel, NewsItem* item);
    // The live story for one that a message names, which a refresh may have replaced since.
    NewsItem* LiveStory(const Channel& channel, NewsItem* item) const;
    // The story screen moves to the live story after a refresh replaced the channel's stories.
    void FollowRefreshOnStoryScreen(Channel& channel,
                                    const std::shared_ptr<Channel::ItemList>& before);
    void ShowChannelMenu();
    void StepStory(bool next);
    void OpenLink(const QString& target);
    void HideForBrowser();

    // Refresh progress on the screens.
    void ShowProgress(bool shown);
    void ShowProgressLine(const RefreshProgress& progress);
    void RefreshAllStarted();
    void HideProgressWhenIdle();
    // A "Refresh Channel" ended, however: busy and the stop request are cleared.
    void EndChannelRefresh();

    // Menus.
    void UpdateCategoryList(QMenu* categories);
    void CheckTextSize(QMenu* menu);

    DeviceFamily family_;
    UserDialogs dialogs_;
    ChannelStore store_;
    Screen screen_ = kNoScreen;
    bool hiddenForBrowser_ = false;
    std::unique_ptr<MainWindow> mainWindow_;
    WelcomeScreen* welcomeScreen_ = nullptr;
    ChannelsScreen* channelsScreen_ = nullptr;
    ChannelScreen* channelScreen_ = nullptr;
    StoryScreen* storyScreen_ = nullptr;
    QMenu* contextMenu_ = nullptr;
    QTimer* autoUpdateTimer_ = nullptr;
    // Declared before the engine, whose workers hand work over until the engine is gone.
    HandOverQueue handOvers_;
    std::unique_ptr<RefreshEngine> engine_;
    // Completions posted while this lives are run; those still queued when it goes are dropped.
    std::shared_ptr<int> handOverToken_;
    // Channels shown as being updated, and whether a refresh of all channels runs: the progress
    // control shows while either is so.
    std::set<const Channel*> updating_;
    bool refreshAllRunning_ = false;
    // Shown from "Refresh Channel" until the shown channel's update ends.
    std::unique_ptr<WaitCursor> refreshCursor_;
    // The channel of a "Refresh Channel" in flight: busy is set until its update ends, however.
    const Channel* refreshingChannel_ = nullptr;
    // Stories a refresh replaced, kept until the messages posted before the refresh that may
    // still name them have been handled.
    std::vector<std::shared_ptr<Channel::ItemList>> retiredItems_;
    // The replaced story the story screen still shows when the refresh left no live story for it.
    std::shared_ptr<Channel::ItemList> shownRetiredStory_;
};

} // namespace qf::ui
