#include "ui/StoryScreen.h"

#include "NewsFixture.h"
#include "ui/ChannelListModel.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/HtmlView.h"
#include "ui/MainWindow.h"
#include "ui/NewsListModel.h"
#include "ui/SoftKeyBar.h"

#include <QAction>
#include <QTest>
#include <QTextDocument>

namespace qf::ui::test {
namespace {

class StoryScreenTest : public NewsFixture {
protected:
    QString ShownTitle() {
        const NewsItem* item = app().storyScreen()->item();
        return item == nullptr ? QString() : QString::fromStdU16String(item->title().str());
    }
    Channel& News() { return *app().channelsScreen()->model()->ChannelAt(0); }
    int ChannelsRowUnread() {
        const ChannelListModel& model = *app().channelsScreen()->model();
        return model.data(model.index(0), ChannelListModel::kUnreadRole).toInt();
    }
    bool Enabled(int command) {
        OpenMenu();
        return MenuEntry(command)->isEnabled();
    }
};

TEST_F(StoryScreenTest, OpeningAStoryMarksItReadAndTheCountsFollowOnBothScreens) {
    StartWithStories();
    OpenChannel(0);
    OpenStory(0);
    EXPECT_EQ(ShownTitle(), QStringLiteral("Alpha"));
    EXPECT_TRUE(app().storyScreen()->view()->toPlainText().contains(QStringLiteral("Body")));
    EXPECT_EQ(News().newItemCount(), 1);
    EXPECT_EQ(News().modified(), 1);
    EXPECT_EQ(ChannelsRowUnread(), 1);
    const NewsListModel& model = *channelScreen().model();
    EXPECT_TRUE(model.data(model.index(0), NewsListModel::kReadRole).toBool());

    // A read story opened again changes no count.
    app().OnCommand(kCtlNone, kCmdBack);
    OpenStory(1);
    EXPECT_EQ(News().newItemCount(), 1);
}

TEST_F(StoryScreenTest, ReadStateReachesTheCachedFeedAndSurvivesARestart) {
    StartWithStories();
    OpenChannel(0);
    OpenStory(2);
    QuitApp();
    EXPECT_NE(qf::test::ReadFileBytes(CachedFeed(1)).find("qf_wasRead"), std::string::npos);

    StartApp();
    EXPECT_EQ(ChannelsRowUnread(), 1);
    OpenChannel(0);
    const NewsListModel& model = *channelScreen().model();
    EXPECT_FALSE(model.data(model.index(0), NewsListModel::kReadRole).toBool());
    EXPECT_TRUE(model.data(model.index(2), NewsListModel::kReadRole).toBool());
}

TEST_F(StoryScreenTest, PreviousAndNextFollowTheSortedList) {
    StartWithStories();
    OpenChannel(0);
    app().OnCommand(kCtlNone, kCmdSortByDate);
    ASSERT_EQ(Titles(), QStringList({"Bravo", "Delta", "Alpha", "Charlie"}));
    OpenStory(1);
    app().OnCommand(kCtlNone, kCmdNextNews);
    EXPECT_EQ(ShownTitle(), QStringLiteral("Alpha"));
    // Right released in the story view steps too.
    QTest::keyClick(app().storyScreen()->view(), Qt::Key_Right);
    ASSERT_TRUE(WaitFor([this] { return ShownTitle() == QStringLiteral("Charlie"); }));
    EXPECT_FALSE(Enabled(kCmdNextNews));
    EXPECT_TRUE(Enabled(kCmdPreviousNews));
    app().OnCommand(kCtlNone, kCmdNextNews);
    EXPECT_EQ(ShownTitle(), QStringLiteral("Charlie"));
    app().OnCommand(kCtlNone, kCmdPreviousNews);
    EXPECT_EQ(ShownTitle(), QStringLiteral("Alpha"));
    EXPECT_EQ(channelScreen().SelectedItem(), app().storyScreen()->item());
}

TEST_F(StoryScreenTest, NewOnlyListLosesTheOpenedStoryAndStepsFromWhereItWas) {
    StartWithStories({{"One", "", false, ""},
                      {"Two", "", true, ""},
                      {"Three", "", false, ""},
                      {"Four", "", false, ""}});
    OpenChannel(0);
    app().OnCommand(kCtlNone, kCmdNewHeadlinesOnly);
    OpenStory(1);
    EXPECT_EQ(ShownTitle(), QStringLiteral("Three"));
    EXPECT_EQ(Titles(), QStringList({"One", "Four"}));
    // Four took Three's place: previous is the row above it, next is Four itself.
    EXPECT_TRUE(Enabled(kCmdNextNews));
    app().OnCommand(kCtlNone, kCmdPreviousNews);
    EXPECT_EQ(ShownTitle(), QStringLiteral("One"));
    EXPECT_EQ(Titles(), QStringList({"Four"}));
    app().OnCommand(kCtlNone, kCmdNextNews);
    EXPECT_EQ(ShownTitle(), QStringLiteral("Four"));
    EXPECT_TRUE(Titles().isEmpty());
    EXPECT_FALSE(Enabled(kCmdNextNews));
    EXPECT_FALSE(Enabled(kCmdPreviousNews));
}

TEST_F(StoryScreenTest, ReadStoryOnlineMinimisesAndHandsTheLinkWithoutThePrefix) {
    StartWithStories({{"Local", "", false, "qf_http://127.0.0.1/local"},
                      {"Query", "", false, "http://127.0.0.1/?page=qf_x"},
                      {"Nowhere", "", false, ""}});
    OpenChannel(0);
    OpenStory(0);
    app().OnCommand(kCtlNone, kCmdReadOnline);
    ASSERT_EQ(opened_, QList<QUrl>({QUrl(QStringLiteral("http://127.0.0.1/local"))}));
    EXPECT_TRUE(app().hiddenForBrowser());
    EXPECT_TRUE(app().mainWindow()->isMinimized());
    EXPECT_TRUE(app().mainWindow()->softKeys()->isHidden());

    app().OnActivate();
    EXPECT_FALSE(app().hiddenForBrowser());
    EXPECT_FALSE(app().mainWindow()->isMinimized());
    EXPECT_FALSE(app().mainWindow()->softKeys()->isHidden());
    EXPECT_NE(MenuEntry(kCmdReadOnline), nullptr);

    app().OnCommand(kCtlNone, kCmdNextNews);
    app().OnCommand(kCtlNone, kCmdReadOnline);
    ASSERT_EQ(opened_.size(), 2);
    EXPECT_EQ(opened_.last(), QUrl(QStringLiteral("http://127.0.0.1/?page=qf_x")));
    app().OnActivate();
    app().OnCommand(kCtlNone, kCmdNextNews);
    app().OnCommand(kCtlNone, kCmdReadOnline);
    EXPECT_EQ(opened_.size(), 2);
    EXPECT_FALSE(app().hiddenForBrowser());
}

TEST_F(StoryScreenTest, LinkInTheStoryGoesToTheBrowserAndAStoryWithoutBodyShowsNothing) {
    StartWithStories(
        {{"Linked", "", false, "", "&lt;a href=\"qf_http://127.0.0.1/x\"&gt;visit&lt;/a&gt;"},
         {"Empty", "", false, "", ""}});
    OpenChannel(0);
    OpenStory(0);
    HtmlView* view = app().storyScreen()->view();
    QTextCursor link = view->document()->find(QStringLiteral("visit"));
    ASSERT_FALSE(link.isNull());
    link.setPosition(link.selectionStart() + 2);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->cursorRect(link).center());
    EXPECT_EQ(opened_, QList<QUrl>({QUrl(QStringLiteral("http://127.0.0.1/x"))}));
    app().OnActivate();
    app().OnCommand(kCtlNone, kCmdNextNews);
    EXPECT_EQ(ShownTitle(), QStringLiteral("Empty"));
    EXPECT_TRUE(app().storyScreen()->view()->toPlainText().isEmpty());
}

TEST_F(StoryScreenTest, ViewOptionsApplyAtOnceAndPodcastEntriesStayDisabled) {
    StartWithStories();
    OpenChannel(0);
    OpenStory(0);
    HtmlView* view = app().storyScreen()->view();
    const bool fit = view->fitToScreen();
    const bool clearType = view->clearType();
    app().OnCommand(kCtlNone, kCmdFitToScreen);
    app().OnCommand(kCtlNone, kCmdClearType);
    app().OnCommand(kCtlNone, kCmdTextLargest);
    EXPECT_EQ(view->fitToScreen(), !fit);
    EXPECT_EQ(app().store().settings().fitToScreen() != 0, !fit);
    EXPECT_EQ(view->clearType(), !clearType);
    EXPECT_EQ(app().store().settings().clearType() != 0, !clearType);
    EXPECT_EQ(view->textSizeLevel(), 4);
    EXPECT_EQ(app().store().settings().textSize(), 4);
    for (int command : {kCmdDownloadPodcast, kCmdPlayPodcast, kCmdCopyPodcast, kCmdDeletePodcast}) {
        EXPECT_FALSE(Enabled(command)) << command;
    }
}

} // namespace
} // namespace qf::ui::test
