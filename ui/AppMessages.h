#pragma once

namespace qf::ui {

class AppCommands;
class AppMenus;
class AppNavigation;
class AppRefresh;
class AppScreens;
class PrivateMessageEvent;

// Answers the private messages that the screens and the refresh workers post to the main window.
class AppMessages {
public:
    AppMessages(AppScreens& screens, AppNavigation& navigation, AppCommands& commands,
                AppMenus& menus, AppRefresh& refresh);

    void OnPrivateMessage(PrivateMessageEvent& event);

private:
    AppScreens& screens_;
    AppNavigation& navigation_;
    AppCommands& commands_;
    AppMenus& menus_;
    AppRefresh& refresh_;
};

} // namespace qf::ui
