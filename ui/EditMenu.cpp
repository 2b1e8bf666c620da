#include "ui/EditMenu.h"

#include "platform/StringTable.h"
#include "ui/QtText.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QStyleHints>

namespace qf::ui {

namespace {

QString Text(int id) {
    return ToQString(LoadString(id));
}

bool ClipboardHasText() {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data != nullptr && data->hasText();
}

} // namespace

EditMenu::EditMenu(QWidget* owner) : QObject(owner), owner_(owner) {
    hold_.setSingleShot(true);
    hold_.setInterval(QGuiApplication::styleHints()->mousePressAndHoldInterval());
    connect(&hold_, &QTimer::timeout, this, &EditMenu::OpenOnHold);
}

EditMenu::~EditMenu() = default;

EditMenu* AttachEditMenus(QWidget* root) {
    auto* editMenu = root->findChild<EditMenu*>(QString(), Qt::FindDirectChildrenOnly);
    if (editMenu == nullptr) {
        editMenu = new EditMenu(root);
    }
    editMenu->AttachUnder(root);
    return editMenu;
}

void EditMenu::AttachUnder(QWidget* root) {
    root->installEventFilter(this);
    AttachBoxes(root);
}

void EditMenu::AttachBoxes(QWidget* root) {
    for (QLineEdit* box : root->findChildren<QLineEdit*>()) {
        Attach(box);
    }
    // A spin box keeps the keyboard focus for the text box inside it.
    for (QAbstractSpinBox* spin : root->findChildren<QAbstractSpinBox*>()) {
        spin->setContextMenuPolicy(Qt::PreventContextMenu);
        spin->installEventFilter(this);
    }
}

void EditMenu::Attach(QLineEdit* box) {
    // The box's own menu would open beside this one.
    box->setContextMenuPolicy(Qt::PreventContextMenu);
    box->installEventFilter(this);
}

QMenu* EditMenu::menu() {
    if (menu_ == nullptr) {
        BuildMenu();
    }
    return menu_;
}

void EditMenu::BuildMenu() {
    menu_ = new QMenu(owner_);
    menu_->setObjectName(QStringLiteral("EditMenu"));
    const auto add = [this](int text, void (*command)(QLineEdit*)) {
        return menu_->addAction(Text(text), this, [this, command] {
            if (target_ != nullptr) {
                command(target_);
            }
        });
    };
    cut_ = add(kStrCut, &EditMenu::Cut);
    copy_ = add(kStrCopy, &EditMenu::Copy);
    paste_ = add(kStrPaste, &EditMenu::Paste);
    clear_ = add(kStrClear, &EditMenu::Clear);
    menu_->addSeparator();
    selectAll_ = add(kStrSelectAll, &EditMenu::SelectAll);
    connect(menu_, &QMenu::aboutToShow, this, &EditMenu::UpdateEntries);
}

void EditMenu::UpdateEntries() {
    const bool selection = target_ != nullptr && target_->hasSelectedText();
    cut_->setEnabled(selection);
    copy_->setEnabled(selection);
    clear_->setEnabled(selection);
    paste_->setEnabled(target_ != nullptr && ClipboardHasText());
    selectAll_->setEnabled(target_ != nullptr && !target_->text().isEmpty());
}

void EditMenu::Show(QLineEdit* box, QPoint point) {
    hold_.stop();
    target_ = box;
    menu()->popup(box->mapToGlobal(point));
}

bool EditMenu::eventFilter(QObject* watched, QEvent* event) {
    if (auto* box = qobject_cast<QLineEdit*>(watched)) {
        return FilterMouse(box, event) || FilterRequest(box, box, event);
    }
    if (auto* spin = qobject_cast<QAbstractSpinBox*>(watched)) {
        auto* box = spin->findChild<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly);
        return box != nullptr && FilterRequest(spin, box, event);
    }
    if (event->type() == QEvent::Show && watched->isWidgetType()) {
        AttachBoxes(static_cast<QWidget*>(watched));
    }
    return false;
}

bool EditMenu::FilterRequest(QWidget* watched, QLineEdit* box, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool menuKey = key->key() == Qt::Key_Menu ||
                             (key->key() == Qt::Key_F10 && key->modifiers() == Qt::ShiftModifier);
        if (menuKey) {
            Show(box, box->inputMethodQuery(Qt::ImCursorRectangle).toRect().bottomLeft());
        }
        return menuKey;
    }
    if (event->type() == QEvent::ContextMenu) {
        // A text box has opened the menu on the right button's press already; what is left is
        // the keyboard's request, or a click on a spin box's arrows.
        const auto* request = static_cast<QContextMenuEvent*>(event);
        if (request->reason() != QContextMenuEvent::Mouse || watched != box) {
            Show(box, box->mapFrom(watched, request->pos()));
        }
        return true;
    }
    // Focus taken by another box ends a hold; the window merely losing its activation does not,
    // as the button is still down.
    if (event->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::ActiveWindowFocusReason) {
        hold_.stop();
        heldPress_.reset();
    }
    return false;
}

bool EditMenu::FilterMouse(QLineEdit* box, QEvent* event) {
    const QEvent::Type type = event->type();
    if (passingPress_ ||
        (type != QEvent::MouseButtonPress && type != QEvent::MouseMove &&
         type != QEvent::MouseButtonRelease && type != QEvent::MouseButtonDblClick)) {
        return false;
    }
    const auto& mouse = static_cast<const QMouseEvent&>(*event);
    if (type == QEvent::MouseButtonPress) {
        PassHeldPress();
        if (mouse.button() == Qt::RightButton) {
            Show(box, mouse.position().toPoint());
        } else if (mouse.button() == Qt::LeftButton) {
            HoldBack(box, mouse);
            return true;
        }
        return false;
    }
    if (heldPress_ == nullptr) {
        const bool swallow = type == QEvent::MouseButtonRelease && swallowRelease_;
        swallowRelease_ = false;
        return swallow;
    }
    const QPoint moved = mouse.position().toPoint() - heldPress_->position().toPoint();
    if (type == QEvent::MouseMove &&
        moved.manhattanLength() <= QGuiApplication::styleHints()->startDragDistance()) {
        // Still held where it was pressed: it may yet become a hold.
        return true;
    }
    PassHeldPress();
    return false;
}

void EditMenu::HoldBack(QLineEdit* box, const QMouseEvent& press) {
    holdBox_ = box;
    heldPress_.reset(static_cast<QMouseEvent*>(press.clone()));
    swallowRelease_ = false;
    hold_.start();
}

void EditMenu::PassHeldPress() {
    hold_.stop();
    const std::unique_ptr<QMouseEvent> press = std::move(heldPress_);
    if (press == nullptr || holdBox_ == nullptr) {
        return;
    }
    passingPress_ = true;
    QCoreApplication::sendEvent(holdBox_, press.get());
    passingPress_ = false;
}

void EditMenu::OpenOnHold() {
    if (heldPress_ == nullptr || holdBox_ == nullptr) {
        return;
    }
    const QPoint point = heldPress_->position().toPoint();
    heldPress_.reset();
    swallowRelease_ = true;
    Show(holdBox_, point);
}

void EditMenu::Cut(QLineEdit* box) {
    if (box->hasSelectedText()) {
        Copy(box);
        Clear(box);
    }
}

void EditMenu::Copy(QLineEdit* box) {
    if (box->hasSelectedText()) {
        QGuiApplication::clipboard()->setText(box->selectedText());
    }
}

void EditMenu::Paste(QLineEdit* box) {
    if (!ClipboardHasText()) {
        return;
    }
    box->setFocus();
    // insert() replaces the selection and can be undone, unlike setText().
    box->insert(QGuiApplication::clipboard()->text());
}

void EditMenu::Clear(QLineEdit* box) {
    if (box->hasSelectedText()) {
        box->insert(QString());
    }
}

void EditMenu::SelectAll(QLineEdit* box) {
    if (!box->text().isEmpty()) {
        box->setFocus();
        box->selectAll();
    }
}

} // namespace qf::ui
