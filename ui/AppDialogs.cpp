#include "ui/AppDialogs.h"

#include "ui/AboutBox.h"
#include "ui/AddChannelWizard.h"
#include "ui/ChannelPropertiesDialog.h"
#include "ui/EditMenu.h"
#include "ui/OptionsDialog.h"

#include <QDesktopServices>
#include <QMessageBox>

namespace qf::ui {

namespace {

UserDialogs WithDefaults(UserDialogs dialogs) {
    if (!dialogs.ask) {
        dialogs.ask = [](const QString& question) {
            return QMessageBox::question(nullptr, QStringLiteral("Quillfeed"), question,
                                         QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
        };
    }
    if (!dialogs.tell) {
        dialogs.tell = [](const QString& message) {
            QMessageBox::warning(nullptr, QStringLiteral("Quillfeed"), message);
        };
    }
    if (!dialogs.about) {
        dialogs.about = [] { ShowAboutBox(nullptr); };
    }
    if (!dialogs.run) {
        dialogs.run = [](QDialog& dialog) { return dialog.exec(); };
    }
    if (!dialogs.open) {
        dialogs.open = [](const QUrl& address) { return QDesktopServices::openUrl(address); };
    }
    return dialogs;
}

} // namespace

AppDialogs::AppDialogs(UserDialogs hooks) : hooks_(WithDefaults(std::move(hooks))) {}

int AppDialogs::Run(QDialog& dialog, QWidget& window) const {
    AttachEditMenus(&dialog);
    const int result = hooks_.run(dialog);
    // Without a window manager (a kiosk handheld) nobody else gives the keyboard back.
    window.activateWindow();
    return result;
}

bool AppDialogs::AddChannels(ChannelStore& store, const DeviceFamily& family,
                             QWidget& window) const {
    AddChannelWizard wizard(store, family, &window);
    return Run(wizard, window) == QDialog::Accepted && wizard.Apply();
}

bool AppDialogs::EditChannel(Channel& channel, const ChannelStore& store, QWidget& window) const {
    ChannelPropertiesDialog dialog(channel, store, &window);
    return Run(dialog, window) == QDialog::Accepted;
}

void AppDialogs::ChooseOptions(ChannelStore& store, QWidget& window) const {
    OptionsDialog dialog(store, hooks_.ask, hooks_.tell, &window);
    Run(dialog, window);
}

} // namespace qf::ui
