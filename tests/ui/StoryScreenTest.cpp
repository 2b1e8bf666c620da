#include "ui/StoryScreen.h"

#include "NewsFixture.h"
#include "ui/HtmlView.h"

#include <QTextDocument>

namespace qf::ui::test {
namespace {

class StoryScreenTest : public NewsFixture {
protected:
    QString Shown() {
        const NewsItem* item = storyScreen()->item();
        return item == nullptr ? QString() : QString::fromStdU16String(item->title().str());
    }
    bool Enabled(int command) {
        OpenMenu();
        return MenuEntry(command)->isEnabled();
    }
};

TEST_F(StoryScreenTest, OpeningAStoryMarksItReadOnBothScreensAndPreviousAndNextFollowTheList) {
    StartWithStories();
    OpenChannel(0);
    OpenStory(2);
    EXPECT_EQ(Shown(), "Charlie");
    EXPECT_TRUE(storyScreen()->view()->toPlainText().contains(QStringLiteral("Body")));
    EXPECT_TRUE(Read(2));
    EXPECT_EQ(UnreadOnChannelsScreen(), 1);
    // A read story opened again changes no count.
    Command(kCmdBack);
    ASSERT_EQ(ShownScreen(), kChannelScreen);
    OpenStory(1);
    EXPECT_EQ(news().channel()->newItemCount(), 1);

    QuitApp();
    StartApp();
    EXPECT_EQ(UnreadOnChannelsScreen(), 1);
    OpenChannel(0);
    EXPECT_FALSE(Read(0));
    EXPECT_TRUE(Read(2));

    // Previous and Next follow the sorted list, and the menu loses Read Story Offline.
    Command(kCmdSortByDate);
    OpenStory(1); // Delta, between Bravo and Alpha
    EXPECT_NE(MenuEntry(kCmdReadOffline), nullptr);
    Command(kCmdNextNews);
    EXPECT_EQ(Shown(), "Alpha");
    QTest::keyClick(storyScreen()->view(), Qt::Key_Right);
    ASSERT_TRUE(WaitFor([this] { return Shown() == QStringLiteral("Charlie"); }));
    EXPECT_FALSE(Enabled(kCmdNextNews));
    for (int command : {kCmdDownloadPodcast, kCmdPlayPodcast, kCmdCopyPodcast, kCmdDeletePodcast}) {
        EXPECT_FALSE(MenuEntry(command)->isEnabled()) << command;
    }
    EXPECT_EQ(MenuEntry(kCmdReadOffline), nullptr);
    EXPECT_NE(MenuEntry(kCmdReadOnline), nullptr);
    Command(kCmdPreviousNews);
    EXPECT_EQ(Shown(), "Alpha");
    EXPECT_EQ(news().SelectedItem(), storyScreen()->item());
}

TEST_F(StoryScreenTest, NewOnlyListLosesTheOpenedStoryAndStepsFromItsPlace) {
    StartWithStories({{"One", ""}, {"Two", "", true}, {"Three", ""}, {"Four", ""}});
    OpenChannel(0);
    Command(kCmdNewHeadlinesOnly);
    OpenStory(1);
    EXPECT_EQ(Shown(), "Three");
    EXPECT_EQ(Titles(), QStringList({"One", "Four"}));
    // Four took Three's place: previous is the row above it, next is Four itself.
    Command(kCmdPreviousNews);
    EXPECT_EQ(Shown(), "One");
    Command(kCmdNextNews);
    EXPECT_EQ(Shown(), "Four");
    EXPECT_TRUE(Titles().isEmpty());
    EXPECT_FALSE(Enabled(kCmdNextNews));
    EXPECT_FALSE(Enabled(kCmdPreviousNews));
}

// Links go to the browser without the program's own prefix, while the window is minimised; a
// relative link leads from the story's own address.
TEST_F(StoryScreenTest, LinksGoToTheBrowserWhileTheWindowIsMinimised) {
    const std::string links = "&lt;a href=\"more.html\"&gt;more&lt;/a&gt; "
                              "&lt;a href=\"/top\"&gt;top&lt;/a&gt; "
                              "&lt;a href=\"qf_http://127.0.0.1/x\"&gt;visit&lt;/a&gt; "
                              "&lt;a href=\"qf_here.html\"&gt;here&lt;/a&gt; "
                              "&lt;a href=\"qf_http://127.0.0.1/y\"&gt;other&lt;/a&gt;";
    StartWithStories({{"Web", "", false, "http://127.0.0.1:8080/news/story.html", links},
                      {"Nowhere", "", false, "", links},
                      {"Local", "", false, "qf_http://127.0.0.1/local"},
                      {"Query", "", false, "http://127.0.0.1/?page=qf_x"},
                      {"Hostile", "", false, "file:///etc/passwd", ""}});
    OpenChannel(0);
    OpenStory(0);
    HtmlView* view = storyScreen()->view();
    const auto click = [&](const char* text) {
        QTextCursor link = view->document()->find(QString::fromLatin1(text));
        link.setPosition(link.selectionStart() + 1);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->cursorRect(link).center());
        app().OnActivate();
    };
    // The program's own links are never resolved, however they are written.
    for (const char* text : {"more", "top", "visit", "here"}) {
        click(text);
    }
    // From the keyboard it is the link at the cursor, not the one clicked last.
    view->setTextCursor(view->document()->find(QStringLiteral("other")));
    QTest::keyClick(view, Qt::Key_Return);
    app().OnActivate();
    EXPECT_EQ(QUrl::toStringList(opened_),
              QStringList({"http://127.0.0.1:8080/news/more.html", "http://127.0.0.1:8080/top",
                           "http://127.0.0.1/x", "http://127.0.0.1/y"}));
    opened_.clear();
    Command(kCmdNextNews);
    ASSERT_EQ(Shown(), "Nowhere");
    click("more");
    click("visit");
    EXPECT_EQ(QUrl::toStringList(opened_), QStringList{"http://127.0.0.1/x"});

    opened_.clear();
    Command(kCmdNextNews);
    Command(kCmdReadOnline);
    EXPECT_TRUE(app().mainWindow()->isMinimized());
    EXPECT_TRUE(app().mainWindow()->softKeys()->isHidden());
    app().OnActivate();
    EXPECT_FALSE(app().mainWindow()->isMinimized());
    EXPECT_FALSE(app().mainWindow()->softKeys()->isHidden());
    Command(kCmdNextNews);
    Command(kCmdReadOnline);
    app().OnActivate();
    Command(kCmdNextNews);
    Command(kCmdReadOnline);
    // Only web and mail addresses leave the program, and nothing else minimises the window.
    EXPECT_EQ(QUrl::toStringList(opened_),
              QStringList({"http://127.0.0.1/local", "http://127.0.0.1/?page=qf_x"}));
    EXPECT_FALSE(app().mainWindow()->softKeys()->isHidden());
    EXPECT_FALSE(app().mainWindow()->isMinimized());
    EXPECT_TRUE(view->toPlainText().isEmpty());
}

// Without a window manager nothing tells the window it is active again; being restored or
// given the focus is enough.
TEST_F(StoryScreenTest, WindowComesBackFromTheBrowserAndStaysWhenNoBrowserStarts) {
    StartWithStories();
    OpenChannel(0);
    OpenStory(0);
    MainWindow* window = app().mainWindow();
    const auto readOnline = [&] {
        Command(kCmdReadOnline);
        ASSERT_TRUE(window->isMinimized());
        ASSERT_TRUE(window->softKeys()->isHidden());
    };
    readOnline();
    window->showNormal();
    EXPECT_FALSE(window->softKeys()->isHidden());
    readOnline();
    storyScreen()->view()->clearFocus();
    storyScreen()->view()->setFocus();
    EXPECT_FALSE(window->isMinimized());
    EXPECT_FALSE(window->softKeys()->isHidden());

    browserStarts_ = false;
    Command(kCmdReadOnline);
    EXPECT_EQ(told_, QStringList{"No web browser could be started to open this address:\n"
                                 "http://127.0.0.1/a"});
    EXPECT_FALSE(window->isMinimized());
    EXPECT_FALSE(window->softKeys()->isHidden());
}

} // namespace
} // namespace qf::ui::test
