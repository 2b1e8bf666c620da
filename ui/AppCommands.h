#pragma once

#include "ui/CommandIds.h"
#include "ui/DeviceFamily.h"

#include <span>
#include <string_view>

namespace qf {
class ChannelStore;
class RefreshEngine;
} // namespace qf

namespace qf::ui {

class AppDialogs;
class AppNavigation;
class AppRefresh;
class AppScreens;
class AppSync;

// Every command of the menus, soft keys and accelerators, each run on the screens it belongs to.
class AppCommands {
public:
    struct Parts {
        ChannelStore& store;
        AppScreens& screens;
        AppNavigation& navigation;
        AppRefresh& refresh;
        RefreshEngine& engine;
        AppSync& sync;
        const AppDialogs& dialogs;
        DeviceFamily family;
    };
    explicit AppCommands(const Parts& parts);

    // Runs a command; true when it was handled. `sourceControl` is 0 for menus, soft keys and
    // accelerators.
    bool Run(int sourceControl, int command);
    // Leaves the welcome screen for the channels list, through the add-channel wizard.
    void LeaveWelcome(int command);

private:
    // Which handler runs a command on which screen (kNoScreen: on every screen).
    struct Route {
        Screen screen;
        int command;
        void (AppCommands::*handler)(int command);
    };
    static std::span<const Route> Routes();
    // "All Categories" or the entry of one category.
    void SelectCategory(int command);
    std::u16string_view volume() const;

    void Quit(int command);
    void About(int command);
    void Help(int command);
    void Back(int command);
    void TextSize(int command);
    void ToggleClearType(int command);
    void ToggleFitToScreen(int command);
    void RefreshAll(int command);
    void SyncNow(int command);
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
    void EditChannelProperties(int command);
    void ChooseOptions(int command);
    void NoAction(int command);

    ChannelStore& store_;
    AppScreens& screens_;
    AppNavigation& navigation_;
    AppRefresh& refresh_;
    RefreshEngine& engine_;
    AppSync& sync_;
    const AppDialogs& dialogs_;
    DeviceFamily family_;
};

} // namespace qf::ui
