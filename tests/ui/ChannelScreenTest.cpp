#include "NewsFixture.h"
#include "ui/ChannelRowDelegate.h"
#include "ui/HtmlView.h"
#include "ui/NewsRowDelegate.h"
#include "ui/RowTitle.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QMouseEvent>

namespace qf::ui::test {
namespace {

using ChannelScreenTest = NewsFixture;
using ChannelRowsTest = UiFixture;

TEST(RowTitle, NumericReferencesMoveTheRestByItsByteCount) {
    // 233 replaces the "&"; nine bytes (four and a half characters) of " au lait" move left.
    EXPECT_EQ(RowTitle(u"caf&#233; au lait"), u"caf\u00e9 au l au lait");
    EXPECT_EQ(RowTitle(u"a&#10;b"), u"ab");
    EXPECT_EQ(RowTitle(u"line&#10;break here"), u"linebreak reak here");
    EXPECT_EQ(RowTitle(u"&#0; &#abc; &#x41; &amp;"), u"&#0; &#abc; &#x41; &amp;");
    EXPECT_EQ(RowTitle(u"no end &#65"), u"no end &#65");
    EXPECT_EQ(RowTitle(u"&#65;&#66;"), u"A&#6;B");
}

// A narrow smartphone shows the unread count alone, and has no automatic update.
TEST_F(ChannelRowsTest, RowsShowCountsAndBoldWhileUnread) {
    WriteStore([](ChannelStore& store) {
        Category& category = store.DefaultCategory();
        AddTestChannel(category, u"Empty", 0, 0);
        AddTestChannel(category, u"Some unread", 3, 12);
        AddTestChannel(category, u"All read", 0, 12);
        AddTestChannel(category, u"Busy", 1200, 1200);
    });
    StartApp({true, 12});
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_EQ(AutoUpdateTimer(), nullptr);
    const ChannelListModel& model = *channelsScreen()->model();
    const auto data = [&model](int row, int role) { return model.index(row).data(role).toInt(); };
    const auto counts = [&](int row) {
        return CountText(data(row, ChannelListModel::kUnreadRole),
                         data(row, ChannelListModel::kTotalRole),
                         channelsScreen()->unreadCountAlone());
    };
    app().mainWindow()->resize(480, 640);
    app().mainWindow()->show();
    QTest::qWait(1);
    EXPECT_EQ(counts(0), QString());
    EXPECT_EQ(counts(1), "3/12");
    EXPECT_NE(data(1, ChannelListModel::kLiveUnreadRole), 0);
    EXPECT_EQ(counts(2), "0/12");
    EXPECT_EQ(data(2, ChannelListModel::kLiveUnreadRole), 0);
    // The count column fits the widest count, here wider than the least width, "XXX/XXX".
    QListView* list = channelsScreen()->list();
    const auto* delegate = dynamic_cast<ChannelRowDelegate*>(list->itemDelegate());
    QFont bold = list->font();
    bold.setBold(true);
    EXPECT_GE(delegate->CountWidth(list->font()),
              QFontMetrics(bold).horizontalAdvance(QStringLiteral("1200/1200")));
    ASSERT_GT(QFontMetrics(bold).horizontalAdvance(QStringLiteral("1200/1200")),
              QFontMetrics(bold).horizontalAdvance(QStringLiteral("XXX/XXX")));
    app().mainWindow()->resize(200, 320);
    QTest::qWait(1);
    ASSERT_LT(channelsScreen()->width(), 240);
    EXPECT_EQ(counts(1), "3");
}

TEST_F(ChannelScreenTest, NewOnlySortAndMarkAllRefillTheListAndTheMenuFollows) {
    StartWithStories();
    OpenChannel(0);
    EXPECT_TRUE(news().banner()->toPlainText().contains(QStringLiteral("News")));
    // The banner is drawn a size smaller than a story at the medium size.
    EXPECT_LT(QFontInfo(news().banner()->font()).pixelSize(),
              QFontInfo(storyScreen()->view()->font()).pixelSize());
    EXPECT_EQ(Titles(), QStringList({"Alpha", "Bravo", "Charlie", "Delta"}));
    OpenMenu(QStringLiteral("View"));
    EXPECT_TRUE(MenuEntry(kCmdDoNotSort)->isChecked());
    EXPECT_FALSE(MenuEntry(kCmdAscending)->isEnabled());
    EXPECT_FALSE(MenuEntry(kCmdPlayPodcast)->isEnabled());
    EXPECT_EQ(MenuEntry(kCmdRefreshChannel)->text(), "Refresh Channel");
    Command(kCmdNewHeadlinesOnly);
    EXPECT_EQ(Titles(), QStringList({"Alpha", "Charlie"}));
    Command(kCmdNewHeadlinesOnly);

    Command(kCmdSortByDate);
    EXPECT_EQ(Titles(), QStringList({"Bravo", "Delta", "Alpha", "Charlie"}));
    Command(kCmdAscending);
    EXPECT_EQ(Titles(), QStringList({"Charlie", "Alpha", "Delta", "Bravo"}));
    OpenMenu(QStringLiteral("View"));
    EXPECT_TRUE(MenuEntry(kCmdSortByDate)->isChecked());
    EXPECT_FALSE(MenuEntry(kCmdDoNotSort)->isChecked());
    EXPECT_TRUE(MenuEntry(kCmdAscending)->isEnabled());
    EXPECT_TRUE(MenuEntry(kCmdAscending)->isChecked());
    // The key changes, the direction stays: unread first.
    Command(kCmdSortByStatus);
    EXPECT_EQ(Titles(), QStringList({"Alpha", "Charlie", "Bravo", "Delta"}));
    Command(kCmdAscending);
    EXPECT_EQ(Titles(), QStringList({"Bravo", "Delta", "Alpha", "Charlie"}));
    Command(kCmdDoNotSort);
    EXPECT_EQ(Titles(), QStringList({"Alpha", "Bravo", "Charlie", "Delta"}));

    // Mark all repaints the rows and refills the new-only list.
    Command(kCmdMarkAllRead);
    EXPECT_TRUE(Read(0) && Read(2));
    EXPECT_EQ(UnreadOnChannelsScreen(), 0);
    Command(kCmdNewHeadlinesOnly);
    EXPECT_TRUE(Titles().isEmpty());
    Command(kCmdMarkAllUnread);
    EXPECT_EQ(Titles().size(), 4);
    EXPECT_EQ(UnreadOnChannelsScreen(), 4);
}

TEST_F(ChannelScreenTest, FailedChannelShowsOnlyItsErrorInRedWithTheTimeInGrey) {
    StartWithStories();
    OpenChannel(0);
    QListView* list = news().list();
    const int storyHeight = list->visualRect(news().model()->index(0)).height();
    Command(kCmdBack);
    OpenChannel(1);
    ASSERT_EQ(Titles(), QStringList({"Failed to parse the channel@1/5/24 9:30 AM"}));
    // Two lines of the bold font and its internal leading (its height less its em size).
    const QFont bold = NewsRowDelegate::BoldFont(list->font());
    const int boldHeight = QFontMetrics(bold).height();
    ASSERT_GT(boldHeight, QFontInfo(bold).pixelSize());
    EXPECT_EQ(storyHeight, 2 * boldHeight + boldHeight - QFontInfo(bold).pixelSize());
    // The message row has room for a third line.
    const QRect row = list->visualRect(news().model()->index(0));
    EXPECT_GT(row.height(), storyHeight * 4 / 3);
    const QImage shot = list->viewport()->grab(row).toImage();
    const int third = shot.width() / 3;
    EXPECT_TRUE(HasColour(shot, ErrorText(list->palette(), false), {0, 0, third, shot.height()}));
    EXPECT_TRUE(HasColour(shot, SecondaryText(list->palette(), false),
                          {shot.width() - third, 0, third, shot.height()}));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
    QCoreApplication::processEvents();
    EXPECT_EQ(ShownScreen(), kChannelScreen);
}

TEST_F(ChannelScreenTest, KeyboardMovesOpensGoesBackAndStepsChannels) {
    StartWithStories();
    app().mainWindow()->activateWindow();
    OpenChannel(0);
    QListView* list = news().list();
    ASSERT_TRUE(list->hasFocus());
    // The first row is current, unselected, and drawn framed in the text colour; the first Down
    // moves on to the second.
    ASSERT_EQ(list->currentIndex().row(), 0);
    EXPECT_FALSE(list->selectionModel()->isSelected(list->currentIndex()));
    const auto framed = [list](int row) {
        const QImage shot =
            list->viewport()->grab(list->visualRect(list->model()->index(row, 0))).toImage();
        return HasColour(shot, list->palette().text().color(), {1, 2, 1, shot.height() - 4});
    };
    EXPECT_TRUE(framed(0));
    EXPECT_FALSE(framed(1));
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

TEST_F(ChannelScreenTest, TapOpensAChannelRightClickShowsItsMenuAndBackEndsMinimised) {
    StartWithStories();
    app().mainWindow()->show();
    QListView* list = channelsScreen()->list();
    const QRect row = list->visualRect(list->model()->index(0, 0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
    ASSERT_TRUE(WaitFor([this] { return ShownScreen() == kChannelScreen; }));
    EXPECT_EQ(Titles().size(), 4);
    // The second click of a double-click lands on the headline now under the pointer; it opens
    // nothing and marks nothing read.
    QWidget* headlines = news().list()->viewport();
    for (const QEvent::Type type : {QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
        QMouseEvent second(type, row.center(), headlines->mapToGlobal(row.center()), Qt::LeftButton,
                           type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {});
        QApplication::sendEvent(headlines, &second);
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(ShownScreen(), kChannelScreen);
    EXPECT_FALSE(Read(0));

    QTest::keyClick(app().mainWindow(), Qt::Key_Escape);
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    emit list->customContextMenuRequested(row.center());
    ASSERT_TRUE(WaitFor([this] { return ContextMenu()->isVisible(); }));
    const QList<QAction*> entries = ContextMenu()->actions();
    EXPECT_EQ(entries.first()->text(), "Show Channel");
    EXPECT_EQ(entries.last()->text(), "Channel Properties...");
    ContextMenu()->close();
    QTest::keyClick(app().mainWindow(), Qt::Key_Escape);
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_TRUE(app().mainWindow()->isMinimized());
}

} // namespace
} // namespace qf::ui::test
