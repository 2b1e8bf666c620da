#include "UiFixture.h"
#include "ui/ChannelListModel.h"
#include "ui/ChannelsScreen.h"
#include "ui/HtmlView.h"
#include "ui/MainWindow.h"
#include "ui/PrivateMessages.h"
#include "ui/SoftKeyBar.h"
#include "ui/WelcomeScreen.h"

#include <QCoreApplication>
#include <QMenu>
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
};

TEST_F(FrameTest, FirstRunShowsWelcomeInAPhoneSizedWindowThatComesBackAsItWasLeft) {
    App& first = StartApp();
    EXPECT_LT(first.mainWindow()->width(), first.mainWindow()->height());
    first.mainWindow()->setGeometry(40, 50, 500, 420);
    // A store never loaded is not written at exit; the settings are.
    QuitApp();
    EXPECT_TRUE(StoreFileText().empty());
    const std::string settings =
        qf::test::ReadFileBytes(dir_ / "config" / "Orvelcraft" / "Quillfeed.conf");
    EXPECT_NE(settings.find("[Options]"), std::string::npos);
    EXPECT_NE(settings.find("[Window]"), std::string::npos);

    App& app = StartApp();
    EXPECT_EQ(app.mainWindow()->size(), QSize(500, 420));
    EXPECT_EQ(ShownScreen(), kWelcomeScreen);
    EXPECT_EQ(app.mainWindow()->windowTitle(), "Quillfeed");
    EXPECT_TRUE(welcomeScreen()->view()->toPlainText().contains(u"Welcome to Quillfeed!"));
    EXPECT_EQ(app.mainWindow()->softKeys()->leftKey()->text(), "Continue");
    EXPECT_EQ(AutoUpdateTimer(), nullptr);
    // F1 is the left soft key.
    app.mainWindow()->show();
    QTest::keyClick(app.mainWindow(), Qt::Key_F1);
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_EQ(app.store().loaded(), 1);
    EXPECT_EQ(app.mainWindow()->softKeys()->leftKey()->text(), "New");
    QuitApp();
    EXPECT_NE(StoreFileText().find("<opml"), std::string::npos);
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

// The menu checks the text size, an unknown one as Medium, and ClearType.
TEST_F(FrameTest, CommandsActOnlyOnTheScreensTheyBelongTo) {
    App& app = StartApp();
    app.store().settings().SetTextSize(9);
    QMenu* sizes = OpenMenu(QStringLiteral("Text Size"));
    EXPECT_EQ(Checked(sizes), QStringList{"Medium"});
    EXPECT_TRUE(MenuEntry(kCmdClearType)->isChecked());
    EXPECT_TRUE(Command(kCmdTextLargest));
    EXPECT_EQ(app.store().settings().textSize(), 4);
    EXPECT_EQ(welcomeScreen()->view()->textSizeLevel(), 4);
    EXPECT_TRUE(Command(kCmdClearType));
    EXPECT_EQ(app.store().settings().clearType(), 0);
    EXPECT_FALSE(welcomeScreen()->view()->clearType());
    OpenMenu(QStringLiteral("Text Size"));
    EXPECT_EQ(Checked(sizes), QStringList{"Largest"});
    EXPECT_FALSE(MenuEntry(kCmdClearType)->isChecked());
    EXPECT_FALSE(Command(kCmdRefreshAll));
    EXPECT_FALSE(Command(12345));
    // Until the store is loaded, Back goes to the channels screen from anywhere.
    EXPECT_TRUE(Command(kCmdBack));
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    app.SetScreen(kStoryScreen);
    Command(kCmdBack);
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_FALSE(Command(kCmdTextSmallest));
    EXPECT_EQ(app.store().settings().textSize(), 4);
    EXPECT_TRUE(Command(kCmdReadOffline));
    EXPECT_TRUE(Command(kCmdAbout));
    EXPECT_EQ(told_, QStringList{"About"});
}

TEST_F(FrameTest, NewChannelsOnlyHidesChannelsWithoutUnreadStories) {
    WriteStore([](ChannelStore& store) {
        Category& category = store.DefaultCategory();
        AddTestChannel(category, u"Read", 0, 4);
        AddTestChannel(category, u"Unread", 2, 4);
    });
    App& app = StartApp();
    EXPECT_EQ(Rows(), 2);
    Command(kCmdNewChannelsOnly);
    EXPECT_EQ(app.store().newChannels(), 1);
    ASSERT_EQ(Rows(), 1);
    EXPECT_EQ(Row(0).title(), u"Unread");
}

TEST_F(FrameTest, RefreshDoneRunsItsCompletionOnlyWithChannelAndCompletion) {
    WriteCategories(1);
    App& app = StartApp();
    Channel* channel = &Row(0);
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

TEST_F(FrameTest, StoredChannelsOpenWithTheAutoUpdateAndDeletingOneAsksFirst) {
    WriteCategories(2);
    StartApp();
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_EQ(Rows(), 2);
    ASSERT_NE(AutoUpdateTimer(), nullptr);
    EXPECT_TRUE(AutoUpdateTimer()->isActive());
    EXPECT_EQ(AutoUpdateTimer()->interval(), 30000);
    Channel* doomed = &Row(0);
    const std::string doomedTitle = doomed->title().toUtf8();
    const std::string keptTitle = Row(1).title().toUtf8();
    const auto cached = DataFolder() / ("Channel" + std::to_string(doomed->id()) + ".xml");
    qf::test::WriteFileBytes(cached, "<rss/>");
    channelsScreen()->SelectRow(doomed);

    answer_ = false;
    Command(kCmdDeleteChannel);
    EXPECT_EQ(asked_, QStringList{"Do you want to delete this channel?"});
    EXPECT_EQ(Rows(), 2);
    answer_ = true;
    Command(kCmdDeleteChannel);
    EXPECT_EQ(Rows(), 1);
    EXPECT_FALSE(std::filesystem::exists(cached));
    QuitApp();
    EXPECT_EQ(StoreFileText().find(doomedTitle), std::string::npos);
    EXPECT_NE(StoreFileText().find(keptTitle), std::string::npos);
}

} // namespace
} // namespace qf::ui::test
