#include "ui/EditMenu.h"

#include "platform/StringTable.h"
#include "ui/QtText.h"

#include <QApplication>
#include <QClipboard>
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
    connect(&hold_, &QTimer::timeout, this, [this] {
        if (holdBox_ != nullptr) {
            Show(holdBox_, holdPoint_);
        }
    });
}

EditMenu* EditMenu::AttachToPage(QWidget* page) {
    auto* editMenu = new EditMenu(page);
    for (QLineEdit* box : page->findChildren<QLineEdit*>()) {
        editMenu->Attach(box);
    }
    return editMenu;
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

void EditMenu::StartHold(QLineEdit* box, QPoint point) {
    holdBox_ = box;
    holdPoint_ = point;
    hold_.start();
}

bool EditMenu::eventFilter(QObject* watched, QEvent* event) {
    auto* box = qobject_cast<QLineEdit*>(watched);
    if (box == nullptr) {
        return false;
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto* press = static_cast<QMouseEvent*>(event);
        if (press->button() == Qt::RightButton) {
            Show(box, press->position().toPoint());
        } else if (press->button() == Qt::LeftButton) {
            StartHold(box, press->position().toPoint());
        }
        break;
    }
    case QEvent::MouseMove: {
        const auto* move = static_cast<QMouseEvent*>(event);
        if ((move->position().toPoint() - holdPoint_).manhattanLength() >
            QGuiApplication::styleHints()->startDragDistance()) {
            hold_.stop();
        }
        break;
    }
    case QEvent::MouseButtonRelease:
    case QEvent::FocusOut:
        hold_.stop();
        break;
    default:
        break;
    }
    return false;
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
