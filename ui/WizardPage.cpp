#include "ui/WizardPage.h"

#include "ui/AddChannelWizard.h"

#include <QAbstractItemView>
#include <QKeyEvent>

namespace qf::ui {

WizardPage::WizardPage(WizardData& wizardData, QWidget* parent)
    : QWizardPage(parent), data_(wizardData) {}

bool WizardPage::validatePage() {
    Leave();
    return true;
}

void WizardPage::DriveWizardByKeys(QAbstractItemView* view) {
    view->installEventFilter(this);
}

void WizardPage::Advance() {
    if (auto* host = qobject_cast<AddChannelWizard*>(wizard())) {
        host->Advance();
    }
}

bool WizardPage::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QWizardPage::eventFilter(watched, event);
    }
    auto* host = qobject_cast<AddChannelWizard*>(wizard());
    const auto* key = static_cast<QKeyEvent*>(event);
    if (host == nullptr || (key->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) {
        return false;
    }
    switch (key->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        host->Advance();
        return true;
    case Qt::Key_Backspace:
        host->GoBack();
        return true;
    default:
        return false;
    }
}

} // namespace qf::ui
