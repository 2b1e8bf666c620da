#pragma once

#include "ui/MenuTables.h"

#include <QWidget>
#include <functional>

class QMenu;
class QPushButton;

namespace qf::ui {

// The bar along the bottom of the main window: the left soft key as a button carrying the
// screen's first command, and the right soft key "Menu" opening the screen's menu. F1 and F2
// press them, as a Smartphone's soft-key buttons are pressed.
class SoftKeyBar : public QWidget {
    Q_OBJECT

public:
    using CommandHandler = std::function<void(int command)>;
    // Called before the menu or one of its submenus opens.
    using PopupHandler = std::function<void(QMenu* menu)>;

    SoftKeyBar(CommandHandler onCommand, PopupHandler onPopup, QWidget* parent);

    // Loads the soft keys and the menu of a screen.
    void Load(const MenuBar& bar);
    int loadedResource() const { return resource_; }

    QPushButton* leftKey() const { return leftKey_; }
    QPushButton* menuKey() const { return menuKey_; }
    QMenu* menu() const { return menu_; }

    // Brings the menu up to date and opens it flush above the "Menu" key, right-aligned with it.
    void OpenMenu();

private:
    CommandHandler onCommand_;
    PopupHandler onPopup_;
    int resource_ = 0;
    int leftCommand_ = 0;
    // OpenMenu brought the menu up to date already; the menu's own notice need not again.
    bool updatedForPopup_ = false;
    QPushButton* leftKey_;
    QPushButton* menuKey_;
    QMenu* menu_;
};

// Adds the entries of a menu table to `menu`, each command carrying its number as the action's
// data; `onSubmenuShow` runs before a submenu opens.
void AddMenuEntries(QMenu* menu, std::span<const MenuEntry> entries,
                    const std::function<void(QMenu*)>& onSubmenuShow);

// The QAction of `command` in `menu` or its submenus; nullptr when it is not there.
class QAction* FindCommand(QMenu* menu, int command);
// The command a menu action carries; 0 for separators and submenus.
int CommandOf(const class QAction* action);

} // namespace qf::ui
