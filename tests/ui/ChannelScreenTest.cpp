#include "NewsFixture.h"
#include "ui/HtmlView.h"
#include "ui/MainWindow.h"
#include "ui/StoryScreen.h"

namespace qf::ui::test {
namespace {

using ChannelScreenTest = NewsFixture;

TEST_F(ChannelScreenTest, NewOnlyAndSortChoicesRefillAndReorderTheList) {
    StartWithStories();
    OpenChannel(0);
    EXPECT_TRUE(news().banner()->toPlainText().contains(QStringLiteral("News")));
    EXPECT_EQ(Titles(), QStringList({"Alpha", "Bravo", "Charlie", "Delta"}));
    app().OnCommand(kCtlNone, kCmdNewHeadlinesOnly);
    EXPECT_EQ(Titles(), QStringList({"Alpha", "Charlie"}));
    app().OnCommand(kCtlNone, kCmdNewHeadlinesOnly);

    app().OnCommand(kCtlNone, kCmdSortByDate);
    EXPECT_EQ(Titles(), QStringList({"Bravo", "Delta", "Alpha", "Charlie"}));
    app().OnCommand(kCtlNone, kCmdAscending);
    EXPECT_EQ(Titles(), QStringList({"Charlie", "Alpha", "Delta", "Bravo"}));
    // The key changes, the direction stays: unread first.
    app().OnCommand(kCtlNone, kCmdSortByStatus);
    EXPECT_EQ(Titles(), QStringList({"Alpha", "Charlie", "Bravo", "Delta"}));
    app().OnCommand(kCtlNone, kCmdAscending);
    EXPECT_EQ(Titles(), QStringList({"Bravo", "Delta", "Alpha", "Charlie"}));
    app().OnCommand(kCtlNone, kCmdDoNotSort);
    EXPECT_EQ(Titles(), QStringList({"Alpha", "Bravo", "Charlie", "Delta"}));
}

TEST_F(ChannelScreenTest, FailedChannelShowsOnlyItsErrorInRedWithTheTimeInGrey) {
    StartWithStories();
    OpenChannel(0);
    QListView* list = news().list();
    const int storyHeight = list->visualRect(news().model()->index(0)).height();
    app().OnCommand(kCtlNone, kCmdBack);
    OpenChannel(1);
    ASSERT_EQ(Titles(), QStringList({"Failed to parse the channel@1/5/24 9:30 AM"}));
    // The message row has room for a third line.
    const QRect row = list->visualRect(news().model()->index(0));
    EXPECT_GT(row.height(), storyHeight * 4 / 3);
    const QImage shot = list->viewport()->grab(row).toImage();
    bool redLeft = false;
    bool greyRight = false;
    for (int y = 0; y < shot.height(); ++y) {
        for (int x = 0; x < shot.width(); ++x) {
            redLeft |= x < shot.width() / 3 && shot.pixelColor(x, y) == QColor(255, 0, 0);
            greyRight |= x > shot.width() * 2 / 3 && shot.pixelColor(x, y) == QColor(128, 128, 128);
        }
    }
    EXPECT_TRUE(redLeft);
    EXPECT_TRUE(greyRight);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
    QCoreApplication::processEvents();
    EXPECT_EQ(ShownScreen(), kChannelScreen);
}

TEST_F(ChannelScreenTest, MarkAllRepaintsTheRowsAndRefillsTheNewOnlyList) {
    StartWithStories();
    OpenChannel(0);
    app().OnCommand(kCtlNone, kCmdMarkAllRead);
    EXPECT_TRUE(Read(0) && Read(2));
    EXPECT_EQ(UnreadOnChannelsScreen(), 0);
    app().OnCommand(kCtlNone, kCmdNewHeadlinesOnly);
    EXPECT_TRUE(Titles().isEmpty());
    app().OnCommand(kCtlNone, kCmdMarkAllUnread);
    EXPECT_EQ(Titles().size(), 4);
    EXPECT_EQ(UnreadOnChannelsScreen(), 4);
}

TEST_F(ChannelScreenTest, KeyboardMovesOpensGoesBackAndStepsChannels) {
    StartWithStories();
    app().mainWindow()->activateWindow();
    OpenChannel(0);
    QListView* list = news().list();
    ASSERT_TRUE(list->hasFocus());
    // The first row is current once the list has the focus.
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Return);
    ASSERT_TRUE(WaitFor([this] { return ShownScreen() == kStoryScreen; }));
    EXPECT_EQ(storyScreen()->item(), news().model()->ItemAt(1));
    EXPECT_TRUE(storyScreen()->view()->hasFocus());

    QTest::keyClick(app().mainWindow(), Qt::Key_Escape);
    ASSERT_EQ(ShownScreen(), kChannelScreen);
    EXPECT_TRUE(list->hasFocus());
    EXPECT_EQ(news().SelectedItem(), news().model()->ItemAt(1));
    QTest::keyClick(list, Qt::Key_Right);
    ASSERT_TRUE(WaitFor([this] { return news().channel()->id() == 2; }));
    QTest::keyClick(list, Qt::Key_Left);
    ASSERT_TRUE(WaitFor([this] { return news().channel()->id() == 1; }));
}

} // namespace
} // namespace qf::ui::test
