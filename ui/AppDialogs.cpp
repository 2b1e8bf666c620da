#include "ui/App.h"
#include "ui/ChannelPropertiesDialog.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/MainWindow.h"
#include "ui/OptionsDialog.h"

namespace qf::ui {

int App::RunDialog(QDialog& dialog) {
    const int result = dialogs_.run(dialog);
    // Without a window manager (a kiosk handheld) nobody else gives the keyboard back.
    mainWindow_->activateWindow();
    return result;
}

void App::EditChannelProperties(int) {
    Channel* channel =
        screen_ == kChannelScreen ? channelScreen_->channel() : channelsScreen_->SelectedChannel();
    if (channel == nullptr) {
        return;
    }
    ChannelPropertiesDialog dialog(*channel, mainWindow_.get());
    if (RunDialog(dialog) != QDialog::Accepted) {
        return;
    }
    // The new title shows at once; the address is used by the next refresh.
    channelsScreen_->UpdateRow(channel, false);
    if (screen_ == kChannelScreen) {
        channelScreen_->ShowChannel(channel);
    }
}

void App::ChooseOptions(int) {
    // A refresh writes into the data folder; moving the folder under it would leave its files
    // behind on the old volume.
    if (refreshAllRunning_ || !updating_.empty()) {
        dialogs_.tell(QStringLiteral("Please wait until the refresh has finished."));
        return;
    }
    OptionsDialog dialog(store_, dialogs_.ask, dialogs_.tell, mainWindow_.get());
    RunDialog(dialog);
}

} // namespace qf::ui
