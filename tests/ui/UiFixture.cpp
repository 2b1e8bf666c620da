#include "UiFixture.h"

#include "model/CachedFileNames.h"
#include "platform/Files.h"
#include "platform/FsPath.h"
#include "store/ChannelStoreFile.h"
#include "ui/AddChannelWizard.h"
#include "ui/Theme.h"

#include <QCoreApplication>
#include <QDialog>
#include <QTimer>

namespace qf::ui::test {

UiFixture::~UiFixture() {
    app_.reset();
    // The next test starts in the desktop's colours, whatever this one chose.
    ApplyTheme(ViewerSettings::kFollowDesktopTheme);
    QCoreApplication::processEvents();
}

void UiFixture::WriteStore(const std::function<void(ChannelStore&)>& fill) {
    ChannelStore store;
    fill(store);
    std::filesystem::create_directories(DataFolder());
    ASSERT_TRUE(SaveStore(store, FromFsPath(DataFolder() / "QFChannels.opml")));
}

std::filesystem::path UiFixture::CachedFeed(int32_t id) const {
    return DataFolder() / ToFsPath(FeedFileName(id));
}

std::string UiFixture::StoreFileText() const {
    return qf::test::ReadFileBytes(DataFolder() / "QFChannels.opml");
}

App& UiFixture::StartApp(DeviceFamily family) {
    UserDialogs dialogs;
    dialogs.ask = [this](const QString& question) {
        asked_ << question;
        return answer_;
    };
    dialogs.tell = [this](const QString& message) { told_ << message; };
    dialogs.about = [this] { told_ << QStringLiteral("About"); };
    dialogs.open = [this](const QUrl& address) {
        opened_ << address;
        return browserStarts_;
    };
    dialogs.run = [this](QDialog& dialog) {
        if (auto* wizard = dynamic_cast<AddChannelWizard*>(&dialog); wizard != nullptr && wizard_) {
            wizard->show();
            wizard_(*wizard);
            return wizard->result();
        }
        return onDialog_ ? onDialog_(dialog) : static_cast<int>(QDialog::Rejected);
    };
    app_ = std::make_unique<App>(family, std::move(dialogs));
    EXPECT_TRUE(app_->Start());
    QCoreApplication::processEvents();
    return *app_;
}

void UiFixture::QuitApp() {
    app_->OnCommand(kCtlNone, kCmdQuit);
    app_->Finish();
}

QMenu* UiFixture::OpenMenu(const QString& submenu) {
    QMenu* menu = softKeyMenu();
    emit menu->aboutToShow();
    if (submenu.isEmpty()) {
        return menu;
    }
    for (QAction* action : menu->actions()) {
        if (action->menu() != nullptr && action->text() == submenu) {
            emit action->menu()->aboutToShow();
            return action->menu();
        }
    }
    ADD_FAILURE() << "no submenu " << submenu.toStdString();
    return menu;
}

QStringList UiFixture::Checked(const QMenu* menu) {
    QStringList checked;
    for (const QAction* action : menu->actions()) {
        if (action->isChecked()) {
            checked << action->text();
        }
    }
    return checked;
}

Screen UiFixture::ShownScreen() const {
    const QWidget* shown = app_->mainWindow()->currentScreen();
    return shown == nullptr            ? kNoScreen
           : shown == welcomeScreen()  ? kWelcomeScreen
           : shown == channelsScreen() ? kChannelsScreen
           : shown == channelScreen()  ? kChannelScreen
           : shown == storyScreen()    ? kStoryScreen
                                       : kNoScreen;
}

QTimer* UiFixture::AutoUpdateTimer() const {
    return app_->findChild<QTimer*>(QStringLiteral("100"));
}

void UiFixture::FireAutoUpdate() {
    ASSERT_NE(AutoUpdateTimer(), nullptr);
    QMetaObject::invokeMethod(AutoUpdateTimer(), "timeout");
}

Channel& AddTestChannel(Category& category, const std::u16string& title, int32_t unread,
                        int32_t total, const std::u16string& url) {
    auto channel = std::make_unique<Channel>();
    channel->SetTitle(WString(title));
    channel->SetXmlUrl(WString(url));
    channel->SetItemCount(total);
    channel->SetNewItemCount(unread);
    return *category.AddChannel(std::move(channel));
}

bool HasColour(const QImage& image, const QColor& colour, QRect area) {
    area = area.isEmpty() ? image.rect() : area & image.rect();
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixelColor(x, y) == colour) {
                return true;
            }
        }
    }
    return false;
}

} // namespace qf::ui::test
