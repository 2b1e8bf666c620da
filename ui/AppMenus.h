#pragma once

#include <functional>

class QMenu;

namespace qf {
class ChannelStore;
} // namespace qf

namespace qf::ui {

class AppScreens;

// The menus' states: entries enabled as the shown screen allows, the refresh entries' texts
// following a running refresh, the check marks from the settings, and the category list filled
// in each time it opens. Also the menu over a row of the channels list.
class AppMenus {
public:
    using CommandHandler = std::function<void(int command)>;

    // Builds the channel context menu in the main window; its commands go to `onCommand`.
    AppMenus(const ChannelStore& store, const AppScreens& screens, const CommandHandler& onCommand);

    // Run before every menu and submenu opens: the menu state, then the check marks.
    // `fromMenuKey` for the soft key's "Menu" and its submenus.
    void OnPopup(QMenu* menu, bool fromMenuKey);
    // The context menu under the selected row of the channels list.
    void ShowChannelMenu();
    void CloseChannelMenu();

private:
    void UpdateState(QMenu* menu);
    void UpdateChecks(QMenu* menu, bool fromMenuKey);
    void UpdateCategoryList(QMenu* categories);
    void CheckTextSize(QMenu* menu);

    const ChannelStore& store_;
    const AppScreens& screens_;
    // The main window owns the menu.
    QMenu* contextMenu_;
};

} // namespace qf::ui
