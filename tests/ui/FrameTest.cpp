#include "UiFixture.h"
#include "ui/ChannelListModel.h"
#include "ui/ChannelsScreen.h"
#include "ui/HtmlView.h"
#include "ui/MainWindow.h"
#include "ui/PrivateMessages.h"
#include "ui/SoftKeyBar.h"
#include "ui/WelcomeScreen.h"

#include <QCoreApplication>
#include <QListView>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace qf::ui::test {
namespace {

class FrameTest : public UiFixture {
protected:
    void WriteCategories(int count) {
        WriteStore([count](ChannelStore& store) {
            for (int i = 0; i < count; ++i) {
                auto* category = store.AddCategory(std::make_unique<Category>(
                    WString(u"Category " + std::u16string(1, static_cast<char16_t>(u'A' + i)))));
                AddTestChannel(*category, u"Channel of " + category->name().str(), 1, 2);
            }
        });
    }
    int Rows() { return channelsScreen()->model()->rowCount(); }
};

TEST_F(FrameTest, FirstRunShowsWelcomeAndContinueOpensTheChannelsScreen) {
    App& app = StartApp();
    EXPECT_EQ(ShownScreen(), kWelcomeScreen);
    EXPECT_EQ(app.mainWindow()->windowTitle(), QStringLiteral("Quillfeed"));
    EXPECT_TRUE(welcomeScreen()->view()->toPlainText().contains(u"Welcome to Quillfeed!"));
    EXPECT_EQ(app.mainWindow()->softKeys()->leftKey()->text(), QStringLiteral("Continue"));
    EXPECT_EQ(AutoUpdateTimer(), nullptr);

    // F1 is the left soft key.
    app.mainWindow()->show();
    QTest::keyClick(app.mainWindow(), Qt::Key_F1);
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_TRUE(app.store().loaded());
    EXPECT_EQ(app.mainWindow()->softKeys()->leftKey()->text(), QStringLiteral("New"));
    QuitApp();
    EXPECT_NE(StoreFileText().find("<opml"), std::string::npos);
}

TEST_F(FrameTest, StoreFileOpensTheChannelsScreenWithTheAutoUpdateTimerExceptOnASmartphone) {
    WriteCategories(2);
    StartApp();
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_EQ(Rows(), 2);
    ASSERT_NE(AutoUpdateTimer(), nullptr);
    EXPECT_TRUE(AutoUpdateTimer()->isActive());
    EXPECT_EQ(AutoUpdateTimer()->interval(), 30000);
    QuitApp();

    StartApp({true, 12});
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_EQ(AutoUpdateTimer(), nullptr);
}

// A store never loaded is not written at exit; the settings are.
TEST_F(FrameTest, WindowStartsPhoneSizedAndComesBackAsItWasLeft) {
    App& first = StartApp();
    EXPECT_LT(first.mainWindow()->width(), first.mainWindow()->height());
    first.mainWindow()->setGeometry(40, 50, 500, 420);
    QuitApp();
    EXPECT_TRUE(StoreFileText().empty());
    App& second = StartApp();
    EXPECT_EQ(second.mainWindow()->size(), QSize(500, 420));
    const std::string settings =
        qf::test::ReadFileBytes(dir_ / "config" / "Orvelcraft" / "Quillfeed.conf");
    EXPECT_NE(settings.find("[Options]"), std::string::npos);
    EXPECT_NE(settings.find("[Window]"), std::string::npos);
}

TEST_F(FrameTest, UnreadableStoreFileIsReportedAndAnEmptyListShown) {
    std::filesystem::create_directories(DataFolder());
    qf::test::WriteFileBytes(DataFolder() / "QFChannels.opml", "<opml><body>");
    StartApp();
    ASSERT_EQ(told_.size(), 1);
    EXPECT_TRUE(told_[0].startsWith(QStringLiteral("Failed to open Channels file '")));
    EXPECT_TRUE(told_[0].endsWith(QStringLiteral("QFChannels.opml'.")));
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_EQ(Rows(), 0);
}

TEST_F(FrameTest, UnreadableStoreFileOffersTheNewestBackupInItsPlace) {
    const auto backups = DataFolder() / "Backups";
    std::filesystem::create_directories(backups);
    WriteCategories(1);
    std::filesystem::rename(DataFolder() / "QFChannels.opml",
                            backups / "QFChannels-2024-03-04.opml");
    WriteCategories(2);
    std::filesystem::rename(DataFolder() / "QFChannels.opml",
                            backups / "QFChannels-2024-03-05.opml");
    const std::string newest = qf::test::ReadFileBytes(backups / "QFChannels-2024-03-05.opml");
    qf::test::WriteFileBytes(DataFolder() / "QFChannels.opml", "<opml><body>");

    StartApp();
    ASSERT_EQ(asked_.size(), 1);
    EXPECT_TRUE(asked_[0].startsWith(QStringLiteral("Failed to open Channels file '")));
    EXPECT_TRUE(asked_[0].contains(QStringLiteral("QFChannels.opml'.")));
    EXPECT_TRUE(asked_[0].endsWith(QStringLiteral("Restore the newest backup, of 2024-03-05?")));
    EXPECT_EQ(Rows(), 2);
    EXPECT_EQ(StoreFileText(), newest);
    EXPECT_EQ(qf::test::ReadFileBytes(DataFolder() / "QFChannels.opml.broken"), "<opml><body>");
    ASSERT_EQ(told_.size(), 1);
    EXPECT_TRUE(told_[0].contains(QStringLiteral("QFChannels.opml.broken")));
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
}

TEST_F(FrameTest, BackKeyStepsBackThroughTheScreensAndThenMinimises) {
    WriteCategories(1);
    App& app = StartApp();
    app.mainWindow()->show();
    app.SetScreen(kStoryScreen);
    QTest::keyClick(app.mainWindow(), Qt::Key_Escape);
    EXPECT_EQ(ShownScreen(), kChannelScreen);
    QTest::keyClick(app.mainWindow(), Qt::Key_Escape);
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    QTest::keyClick(app.mainWindow(), Qt::Key_Escape);
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_TRUE(app.mainWindow()->isMinimized());
}

TEST_F(FrameTest, BackCommandGoesToTheChannelsScreenUntilTheStoreIsLoaded) {
    App& app = StartApp();
    EXPECT_TRUE(app.OnCommand(kCtlNone, kCmdBack));
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    app.SetScreen(kStoryScreen);
    app.OnCommand(kCtlNone, kCmdBack);
    EXPECT_EQ(ShownScreen(), kChannelsScreen);

    app.store().SetLoaded(true);
    app.SetScreen(kStoryScreen);
    app.OnCommand(kCtlNone, kCmdBack);
    EXPECT_EQ(ShownScreen(), kChannelScreen);
}

TEST_F(FrameTest, CommandsActOnlyOnTheScreensTheyBelongTo) {
    App& app = StartApp();
    EXPECT_TRUE(app.OnCommand(kCtlNone, kCmdTextLargest));
    EXPECT_EQ(app.store().settings().textSize(), 4);
    EXPECT_EQ(welcomeScreen()->view()->textSizeLevel(), 4);
    EXPECT_TRUE(app.OnCommand(kCtlNone, kCmdClearType));
    EXPECT_EQ(app.store().settings().clearType(), 0);
    EXPECT_FALSE(welcomeScreen()->view()->clearType());
    EXPECT_FALSE(app.OnCommand(kCtlNone, kCmdRefreshAll));
    EXPECT_FALSE(app.OnCommand(kCtlNone, 12345));

    app.OnCommand(kCtlNone, kCmdContinue);
    EXPECT_FALSE(app.OnCommand(kCtlNone, kCmdTextSmallest));
    EXPECT_EQ(app.store().settings().textSize(), 4);
    EXPECT_TRUE(app.OnCommand(kCtlNone, kCmdReadOffline));
    EXPECT_TRUE(app.OnCommand(kCtlNone, kCmdAbout));
    EXPECT_EQ(told_, QStringList{QStringLiteral("About")});
}

TEST_F(FrameTest, NewChannelsOnlyHidesChannelsWithoutUnreadStories) {
    WriteStore([](ChannelStore& store) {
        Category& category = store.DefaultCategory();
        AddTestChannel(category, u"Read", 0, 4);
        AddTestChannel(category, u"Unread", 2, 4);
    });
    App& app = StartApp();
    EXPECT_EQ(Rows(), 2);
    app.OnCommand(kCtlNone, kCmdNewChannelsOnly);
    EXPECT_EQ(app.store().newChannels(), 1);
    ASSERT_EQ(Rows(), 1);
    EXPECT_EQ(channelsScreen()->model()->ChannelAt(0)->title(), u"Unread");
}

TEST_F(FrameTest, EveryMenuCommandAboveTheCategoryBaseChoosesACategory) {
    WriteCategories(9);
    App& app = StartApp();
    EXPECT_EQ(Rows(), 9);
    // "New" is 40108: with nine categories it also shows the eighth, as it always did.
    app.OnCommand(kCtlNone, kCmdNew);
    EXPECT_EQ(app.store().categoryId(), 7);
    ASSERT_EQ(Rows(), 1);
    EXPECT_EQ(channelsScreen()->model()->ChannelAt(0)->title(), u"Channel of Category H");
    app.OnCommand(kCtlNone, kCmdAllCategories);
    EXPECT_EQ(app.store().categoryId(), -1);
    EXPECT_EQ(Rows(), 9);
}

TEST_F(FrameTest, RefreshDoneRunsItsCompletionOnlyWithChannelAndCompletion) {
    WriteCategories(1);
    App& app = StartApp();
    Channel* channel = channelsScreen()->model()->ChannelAt(0);
    int runs = 0;
    PostRefreshDone(app.mainWindow(), nullptr, [&runs](Channel&) { ++runs; });
    PostRefreshDone(app.mainWindow(), channel, {});
    PostRefreshDone(app.mainWindow(), channel, [&runs, channel](Channel& done) {
        EXPECT_EQ(&done, channel);
        ++runs;
    });
    QCoreApplication::processEvents();
    EXPECT_EQ(runs, 1);
}

TEST_F(FrameTest, DeletingAChannelAsksFirstThenRemovesItsRowAndFiles) {
    WriteCategories(2);
    App& app = StartApp();
    ChannelsScreen& screen = *channelsScreen();
    Channel* doomed = screen.model()->ChannelAt(0);
    const std::string doomedTitle = doomed->title().toUtf8();
    const std::string keptTitle = screen.model()->ChannelAt(1)->title().toUtf8();
    const auto cached = DataFolder() / ("Channel" + std::to_string(doomed->id()) + ".xml");
    qf::test::WriteFileBytes(cached, "<rss/>");
    screen.SelectRow(doomed);

    answer_ = false;
    app.OnCommand(kCtlNone, kCmdDeleteChannel);
    EXPECT_EQ(asked_, QStringList{QStringLiteral("Do you want to delete this channel?")});
    EXPECT_EQ(Rows(), 2);

    answer_ = true;
    app.OnCommand(kCtlNone, kCmdDeleteChannel);
    EXPECT_EQ(Rows(), 1);
    EXPECT_FALSE(std::filesystem::exists(cached));
    QuitApp();
    EXPECT_EQ(StoreFileText().find(doomedTitle), std::string::npos);
    EXPECT_NE(StoreFileText().find(keptTitle), std::string::npos);
}

} // namespace
} // namespace qf::ui::test
