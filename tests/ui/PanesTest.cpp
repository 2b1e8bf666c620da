#include "NewsFixture.h"
#include "ui/HtmlView.h"

#include <QAccessible>
#include <QApplication>
#include <QPushButton>
#include <QSplitter>

namespace qf::ui::test {
namespace {

// The channels, channel and story screens as panes of a wide window.
class PanesTest : public NewsFixture {
protected:
    void StartWide() {
        StartWithStories();
        ResizeWindow(1200);
    }
    QSplitter* splitter() const { return Find<QSplitter>(QStringLiteral("Panes")); }
    // The pane screens, left to right.
    std::array<std::pair<Screen, QWidget*>, 3> Panes() const {
        return {{{kChannelsScreen, channelsScreen()},
                 {kChannelScreen, channelScreen()},
                 {kStoryScreen, storyScreen()}}};
    }
    // Which of them can be seen.
    QList<Screen> Showing() const {
        QList<Screen> showing;
        for (const auto& [screen, widget] : Panes()) {
            if (widget->isVisible()) {
                showing << screen;
            }
        }
        return showing;
    }
    // The one that holds the keyboard focus.
    Screen Focused() {
        const QWidget* focus = app().mainWindow()->focusWidget();
        for (const auto& [screen, widget] : Panes()) {
            if (widget->isAncestorOf(focus)) {
                return screen;
            }
        }
        return kNoScreen;
    }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(app().mainWindow()->focusWidget(), key, modifiers);
    }
    QString ShownStory() const {
        const NewsItem* item = storyScreen()->item();
        return item == nullptr ? QString() : QString::fromStdU16String(item->title().str());
    }
};

TEST_F(PanesTest, WideWindowShowsThePanesSideBySideAndResizingKeepsWhatIsShownAndTheFocus) {
    StartWide();
    EXPECT_EQ(Showing(), QList<Screen>({kChannelsScreen, kChannelScreen, kStoryScreen}));
    // A screen reader meets the panes left to right too.
    QList<const QObject*> readOrder;
    QAccessibleInterface* panes = QAccessible::queryAccessibleInterface(splitter());
    for (int child = 0; child < panes->childCount(); ++child) {
        if (const QObject* pane = panes->child(child)->object();
            !pane->inherits("QSplitterHandle")) {
            readOrder << pane;
        }
    }
    EXPECT_EQ(readOrder, QList<const QObject*>({channelsScreen(), channelScreen(), storyScreen()}));
    // Nothing opened yet: the other panes are empty rather than showing anything old.
    EXPECT_EQ(news().model()->rowCount(), 0);
    EXPECT_TRUE(storyScreen()->view()->toPlainText().isEmpty());
    const QList<int> sizes = splitter()->sizes();
    const int total = sizes[0] + sizes[1] + sizes[2];
    EXPECT_NEAR(sizes[0] * 100 / total, 25, 2);
    EXPECT_NEAR(sizes[1] * 100 / total, 30, 2);

    OpenChannel(0);
    OpenStory(2);
    EXPECT_EQ(Showing().size(), 3);
    EXPECT_EQ(ShownStory(), "Charlie");
    EXPECT_EQ(Focused(), kStoryScreen);

    ResizeWindow(480);
    EXPECT_EQ(Showing(), QList<Screen>{kStoryScreen});
    EXPECT_EQ(Focused(), kStoryScreen);
    Command(kCmdBack);
    EXPECT_EQ(Showing(), QList<Screen>{kChannelScreen});
    ResizeWindow(1200);
    EXPECT_EQ(Showing().size(), 3);
    EXPECT_EQ(Focused(), kChannelScreen);
    EXPECT_EQ(news().channel()->title(), u"News");
    EXPECT_EQ(ShownStory(), "Charlie");
    ResizeWindow(839);
    EXPECT_EQ(Showing(), QList<Screen>{kChannelScreen});
    EXPECT_EQ(Focused(), kChannelScreen);
    EXPECT_EQ(app().mainWindow()->softKeys()->leftKey()->text(), "Back");
}

TEST_F(PanesTest, SoftKeysServeTheFocusedPaneAndTabAndBackMoveTheFocus) {
    StartWide();
    OpenChannel(0);
    EXPECT_EQ(Focused(), kChannelScreen);
    OpenMenu();
    EXPECT_NE(MenuEntry(kCmdRefreshChannel), nullptr);
    EXPECT_EQ(MenuEntry(kCmdRefreshAll), nullptr);
    // The story pane is empty and passed over.
    Press(Qt::Key_Tab);
    EXPECT_EQ(Focused(), kChannelsScreen);
    OpenMenu();
    EXPECT_NE(MenuEntry(kCmdRefreshAll), nullptr);
    EXPECT_EQ(MenuEntry(kCmdRefreshChannel), nullptr);
    EXPECT_EQ(app().mainWindow()->softKeys()->leftKey()->text(), "New");
    Press(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(Focused(), kChannelScreen);

    OpenStory(0);
    EXPECT_EQ(Focused(), kStoryScreen);
    EXPECT_NE(MenuEntry(kCmdReadOnline), nullptr);
    Press(Qt::Key_Tab);
    EXPECT_EQ(Focused(), kChannelsScreen);
    Press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(Focused(), kStoryScreen);
    // Back moves one pane to the left, and from the first one it does what it does there.
    Press(Qt::Key_Escape);
    EXPECT_EQ(Focused(), kChannelScreen);
    Press(Qt::Key_Escape);
    EXPECT_EQ(Focused(), kChannelsScreen);
    EXPECT_EQ(Showing().size(), 3);
    Press(Qt::Key_Escape);
    EXPECT_TRUE(app().mainWindow()->isMinimized());
}

// Stepping moves the selection in its pane and brings the panes to its right up to date.
TEST_F(PanesTest, NextNewsAndNextChannelUpdateThePanesToTheRight) {
    StartWide();
    OpenChannel(0);
    OpenStory(0);
    Command(kCmdNextNews);
    EXPECT_EQ(news().SelectedItem(), storyScreen()->item());
    EXPECT_TRUE(storyScreen()->view()->toPlainText().contains(u"Bravo"));

    Press(Qt::Key_Escape);
    Command(kCmdNextChannel);
    EXPECT_EQ(news().channel()->title(), u"Failed");
    EXPECT_EQ(channelsScreen()->SelectedChannel(), news().channel());
    EXPECT_EQ(storyScreen()->item(), nullptr);
    EXPECT_TRUE(storyScreen()->view()->toPlainText().isEmpty());
    EXPECT_EQ(Showing().size(), 3);
    EXPECT_EQ(Focused(), kChannelScreen);
}

TEST_F(PanesTest, PaneWidthsAreKeptForTheNextRun) {
    StartWide();
    splitter()->setSizes({300, 500, 390});
    const QList<int> sizes = splitter()->sizes();
    // A narrow spell in between does not lose them.
    ResizeWindow(480);
    QuitApp();
    StartApp();
    ResizeWindow(1200);
    EXPECT_EQ(splitter()->sizes(), sizes);
}

TEST_F(PanesTest, WelcomeFillsTheWideWindow) {
    StartApp();
    ResizeWindow(1200);
    EXPECT_TRUE(welcomeScreen()->isVisible());
    EXPECT_TRUE(Showing().isEmpty());
    EXPECT_EQ(welcomeScreen()->width(), 1200);
}

// The menu is brought up to date before it is measured: the story screen's drops an entry and
// a running refresh lengthens the channels screen's, and either still sits on the bar.
TEST_F(PanesTest, SoftKeyMenuOpensFlushAboveTheMenuKey) {
    StartWithStories();
    app().mainWindow()->setGeometry(0, 0, 360, 500);
    const QPushButton* key = app().mainWindow()->softKeys()->menuKey();
    const auto expectFlush = [this, key] {
        QMenu* menu = softKeyMenu();
        QTest::mouseClick(const_cast<QPushButton*>(key), Qt::LeftButton);
        ASSERT_TRUE(WaitFor([menu] { return menu->isVisible(); }));
        const QPoint keyCorner = key->mapToGlobal(QPoint(key->width(), 0));
        EXPECT_EQ(menu->geometry().bottom() + 1, keyCorner.y());
        EXPECT_EQ(menu->geometry().right() + 1, keyCorner.x());
        menu->hide();
    };
    app().store().refresh().Start();
    expectFlush();
    EXPECT_EQ(MenuEntry(kCmdRefreshAll)->text(), "Stop Refresh");
    app().store().refresh().Finish();
    OpenChannel(0);
    OpenStory(0);
    expectFlush();
    EXPECT_EQ(MenuEntry(kCmdReadOffline), nullptr);
}

} // namespace
} // namespace qf::ui::test
