#include "ui/SoftKeyBar.h"

#include "ui/QtText.h"
#include "ui/UiScale.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>

namespace qf::ui {

namespace {

constexpr int kBarMenuButton = 1001;
constexpr int kBarHeight = 26;

} // namespace

SoftKeyBar::SoftKeyBar(CommandHandler onCommand, PopupHandler onPopup, QWidget* parent)
    : QWidget(parent), onCommand_(std::move(onCommand)), onPopup_(std::move(onPopup)),
      leftKey_(new QPushButton(this)), menuKey_(new QPushButton(QStringLiteral("Menu"), this)),
      menu_(new QMenu(this)) {
    setObjectName(QStringLiteral("SoftKeyBar"));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Button);
    menuKey_->setObjectName(QString::number(kBarMenuButton));
    for (QPushButton* key : {leftKey_, menuKey_}) {
        key->setFocusPolicy(Qt::NoFocus);
        key->setFlat(true);
        key->setMinimumHeight(Scaled(kBarHeight, this));
    }
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(leftKey_, 1);
    layout->addWidget(menuKey_, 1);
    connect(leftKey_, &QPushButton::clicked, this, [this] {
        if (leftCommand_ != 0) {
            onCommand_(leftCommand_);
        }
    });
    connect(menuKey_, &QPushButton::clicked, this, &SoftKeyBar::OpenMenu);
    auto* leftShortcut = new QShortcut(QKeySequence(Qt::Key_F1), this);
    leftShortcut->setContext(Qt::WindowShortcut);
    connect(leftShortcut, &QShortcut::activated, leftKey_, &QPushButton::click);
    auto* rightShortcut = new QShortcut(QKeySequence(Qt::Key_F2), this);
    rightShortcut->setContext(Qt::WindowShortcut);
    connect(rightShortcut, &QShortcut::activated, menuKey_, &QPushButton::click);
    connect(menu_, &QMenu::aboutToShow, this, [this] {
        if (!updatedForPopup_) {
            onPopup_(menu_);
        }
        updatedForPopup_ = false;
    });
    // Submenus pass their triggered entries up to this menu, those filled in later included.
    connect(menu_, &QMenu::triggered, this, [this](QAction* action) {
        if (const int command = CommandOf(action); command != 0) {
            onCommand_(command);
        }
    });
}

void SoftKeyBar::Load(const MenuBar& bar) {
    resource_ = bar.resource;
    leftCommand_ = bar.leftCommand;
    leftKey_->setText(ToQString(MenuText(bar.leftCommand)));
    menu_->clear();
    AddMenuEntries(menu_, bar.menu, [this](QMenu* submenu) { onPopup_(submenu); });
}

void AddMenuEntries(QMenu* menu, std::span<const MenuEntry> entries,
                    const std::function<void(QMenu*)>& onSubmenuShow) {
    for (const MenuEntry& entry : entries) {
        const QString text = ToQString(EntryText(entry));
        if (entry.kind == MenuEntry::kSeparator) {
            menu->addSeparator();
        } else if (entry.kind == MenuEntry::kSubmenu) {
            QMenu* submenu = menu->addMenu(text);
            submenu->setObjectName(QLatin1StringView(entry.objectName));
            QObject::connect(submenu, &QMenu::aboutToShow, menu,
                             [onSubmenuShow, submenu] { onSubmenuShow(submenu); });
            AddMenuEntries(submenu, entry.entries, onSubmenuShow);
        } else {
            menu->addAction(text)->setData(entry.id);
        }
    }
}

void SoftKeyBar::OpenMenu() {
    // Entries come, go and change their text as the menu is brought up to date, so it is
    // measured only afterwards.
    onPopup_(menu_);
    updatedForPopup_ = true;
    const QSize wanted = menu_->sizeHint();
    const QPoint corner = menuKey_->mapToGlobal(QPoint(menuKey_->width() - wanted.width(), 0));
    menu_->popup(
        QPoint(std::max(corner.x(), mapToGlobal(QPoint(0, 0)).x()), corner.y() - wanted.height()));
}

QAction* FindCommand(QMenu* menu, int command) {
    for (QAction* action : menu->actions()) {
        if (QMenu* submenu = action->menu()) {
            if (QAction* found = FindCommand(submenu, command)) {
                return found;
            }
        } else if (CommandOf(action) == command) {
            return action;
        }
    }
    return nullptr;
}

int CommandOf(const QAction* action) {
    return action->menu() == nullptr && !action->isSeparator() ? action->data().toInt() : 0;
}

} // namespace qf::ui
