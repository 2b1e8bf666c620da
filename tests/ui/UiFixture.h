#pragma once

#include "model/ChannelStore.h"
#include "support/TestEnv.h"
#include "ui/App.h"
#include "ui/ChannelListModel.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/MainWindow.h"
#include "ui/SoftKeyBar.h"
#include "ui/StoryScreen.h"
#include "ui/WelcomeScreen.h"

#include <QDialog>
#include <QImage>
#include <QMenu>
#include <QStringList>
#include <QTest>
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

class QTimer;

namespace qf::ui {
class AddChannelWizard;
} // namespace qf::ui

namespace qf::ui::test {

// A user's folders in a temporary place, a store file written there when a test wants one, and
// the frame started over them with dialogs that answer instead of a person.
class UiFixture : public ::testing::Test {
protected:
    UiFixture() { std::filesystem::create_directories(dir_ / "cards"); }
    ~UiFixture() override;

    // Writes the store file that the frame will load, after `fill` has filled the store.
    void WriteStore(const std::function<void(ChannelStore&)>& fill);
    std::filesystem::path DataFolder() const { return dir_ / "home" / "QFChannelsData"; }
    // The store file as the frame left it; empty when there is none.
    std::string StoreFileText() const;
    // Where the channel with `id` keeps its last download.
    std::filesystem::path CachedFeed(int32_t id) const;

    App& StartApp(DeviceFamily family = {});
    App& app() { return *app_; }
    bool Command(int command) { return app_->OnCommand(kCtlNone, command); }
    // Closes the main window and runs the end of the run, as quitting does.
    void QuitApp();
    // Quits, then lets the frame go as the program does when it exits.
    void EndApp() {
        QuitApp();
        app_.reset();
    }

    // Opens the soft key's menu as the user would (its state and checks are brought up to date),
    // and the submenu with `caption` in it when one is named.
    QMenu* OpenMenu(const QString& submenu = {});
    QAction* MenuEntry(int command) { return FindCommand(softKeyMenu(), command); }
    static QStringList Checked(const QMenu* menu);

    // The main window's widgets, found as a user's tools would find them.
    template <class Widget> Widget* Find(const QString& name = {}) const {
        return app_->mainWindow()->findChild<Widget*>(name);
    }
    // Runs `command`, whose dialog `play` fills in as the user would; then Done, or Cancel when
    // `accept` is false.
    template <class Dialog>
    void RunDialog(int command, std::function<void(Dialog&)> play, bool accept = true) {
        onDialog_ = [play = std::move(play), accept](QDialog& dialog) {
            play(dynamic_cast<Dialog&>(dialog));
            accept ? dialog.accept() : dialog.reject();
            return dialog.result();
        };
        Command(command);
    }
    // Resizes the main window and waits until it has the new width.
    void ResizeWindow(int width, int height = 700) {
        app_->mainWindow()->resize(width, height);
        ASSERT_TRUE(WaitFor([this, width] { return app_->mainWindow()->width() == width; }));
    }
    QMenu* softKeyMenu() const { return app_->mainWindow()->softKeys()->menu(); }
    WelcomeScreen* welcomeScreen() const { return Find<WelcomeScreen>(); }
    ChannelsScreen* channelsScreen() const { return Find<ChannelsScreen>(); }
    ChannelScreen* channelScreen() const { return Find<ChannelScreen>(); }
    StoryScreen* storyScreen() const { return Find<StoryScreen>(); }
    QMenu* ContextMenu() const { return Find<QMenu>(QStringLiteral("ChannelContextMenu")); }
    // The channels screen's rows.
    int Rows() const { return channelsScreen()->model()->rowCount(); }
    Channel& Row(int row) const { return *channelsScreen()->model()->ChannelAt(row); }
    // Which screen the main window shows.
    Screen ShownScreen() const;
    // The automatic update's timer; nullptr when there is none.
    QTimer* AutoUpdateTimer() const;
    // What the timer does when its period is up.
    void FireAutoUpdate();
    // Runs queued events until `done` holds or a few seconds pass.
    static bool WaitFor(const std::function<bool()>& done) { return QTest::qWaitFor(done, 10000); }

    qf::test::TempDir dir_;
    qf::test::EnvVar config_{"XDG_CONFIG_HOME", (dir_ / "config").string()};
    qf::test::EnvVar home_{"QUILLFEED_HOME", (dir_ / "home").string()};
    qf::test::EnvVar cards_{"QUILLFEED_CARDS", (dir_ / "cards").string()};
    qf::test::EnvVar platform_{"QUILLFEED_PLATFORM", std::nullopt};
    // What the dialogs were shown, and how the next question is answered.
    QStringList told_;
    QStringList asked_;
    bool answer_ = true;
    QList<QUrl> opened_;
    // Whether a browser starts for the addresses handed to the desktop.
    bool browserStarts_ = true;
    // Plays the user's part in the program's own dialogs; without it they are cancelled.
    std::function<int(QDialog&)> onDialog_;
    // The same for the add-channel wizard, which is shown first; Finish accepts it.
    std::function<void(AddChannelWizard&)> wizard_;

private:
    std::unique_ptr<App> app_;
};

// A channel with an address, a title and counts.
Channel& AddTestChannel(Category& category, const std::u16string& title, int32_t unread,
                        int32_t total, const std::u16string& url = u"http://127.0.0.1:9/feed");

// Whether any pixel of `image` inside `area` (all of it when empty) has `colour`.
bool HasColour(const QImage& image, const QColor& colour, QRect area = {});

} // namespace qf::ui::test
