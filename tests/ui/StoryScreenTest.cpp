#include "ui/StoryScreen.h"

#include "NewsFixture.h"
#include "ui/HtmlView.h"
#include "ui/MainWindow.h"
#include "ui/SoftKeyBar.h"

#include <QAction>
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

TEST_F(StoryScreenTest, OpeningAStoryMarksItReadOnBothScreensAndInTheCachedFeed) {
    StartWithStories();
    OpenChannel(0);
    OpenStory(2);
    EXPECT_EQ(Shown(), QStringLiteral("Charlie"));
    EXPECT_TRUE(storyScreen()->view()->toPlainText().contains(QStringLiteral("Body")));
    EXPECT_TRUE(Read(2));
    EXPECT_EQ(UnreadOnChannelsScreen(), 1);
    // A read story opened again changes no count.
    app().OnCommand(kCtlNone, kCmdBack);
    OpenStory(1);
    EXPECT_EQ(news().channel()->newItemCount(), 1);

    QuitApp();
    StartApp();
    EXPECT_EQ(UnreadOnChannelsScreen(), 1);
    OpenChannel(0);
    EXPECT_FALSE(Read(0));
    EXPECT_TRUE(Read(2));
}

TEST_F(StoryScreenTest, PreviousAndNextFollowTheSortedList) {
    StartWithStories();
    OpenChannel(0);
    app().OnCommand(kCtlNone, kCmdSortByDate);
    OpenStory(1); // Delta, between Bravo and Alpha
    app().OnCommand(kCtlNone, kCmdNextNews);
    EXPECT_EQ(Shown(), QStringLiteral("Alpha"));
    QTest::keyClick(storyScreen()->view(), Qt::Key_Right);
    ASSERT_TRUE(WaitFor([this] { return Shown() == QStringLiteral("Charlie"); }));
    EXPECT_FALSE(Enabled(kCmdNextNews));
    for (int command : {kCmdDownloadPodcast, kCmdPlayPodcast, kCmdCopyPodcast, kCmdDeletePodcast}) {
        EXPECT_FALSE(MenuEntry(command)->isEnabled()) << command;
    }
    app().OnCommand(kCtlNone, kCmdPreviousNews);
    EXPECT_EQ(Shown(), QStringLiteral("Alpha"));
    EXPECT_EQ(news().SelectedItem(), storyScreen()->item());
}

TEST_F(StoryScreenTest, NewOnlyListLosesTheOpenedStoryAndStepsFromItsPlace) {
    StartWithStories({{"One", ""}, {"Two", "", true}, {"Three", ""}, {"Four", ""}});
    OpenChannel(0);
    app().OnCommand(kCtlNone, kCmdNewHeadlinesOnly);
    OpenStory(1);
    EXPECT_EQ(Shown(), QStringLiteral("Three"));
    EXPECT_EQ(Titles(), QStringList({"One", "Four"}));
    // Four took Three's place: previous is the row above it, next is Four itself.
    app().OnCommand(kCtlNone, kCmdPreviousNews);
    EXPECT_EQ(Shown(), QStringLiteral("One"));
    app().OnCommand(kCtlNone, kCmdNextNews);
    EXPECT_EQ(Shown(), QStringLiteral("Four"));
    EXPECT_TRUE(Titles().isEmpty());
    EXPECT_FALSE(Enabled(kCmdNextNews));
    EXPECT_FALSE(Enabled(kCmdPreviousNews));
}

TEST_F(StoryScreenTest, LinksGoToTheBrowserWithoutTheLocalPrefixWhileTheWindowIsMinimised) {
    StartWithStories({{"Local", "", false, "qf_http://127.0.0.1/local",
                       "&lt;a href=\"qf_http://127.0.0.1/x\"&gt;visit&lt;/a&gt;"},
                      {"Query", "", false, "http://127.0.0.1/?page=qf_x"},
                      {"Hostile", "", false, "file:///etc/passwd", ""}});
    OpenChannel(0);
    OpenStory(0);
    app().OnCommand(kCtlNone, kCmdReadOnline);
    EXPECT_TRUE(app().mainWindow()->isMinimized());
    EXPECT_TRUE(app().mainWindow()->softKeys()->isHidden());
    app().OnActivate();
    EXPECT_FALSE(app().mainWindow()->isMinimized());
    EXPECT_FALSE(app().mainWindow()->softKeys()->isHidden());

    HtmlView* view = storyScreen()->view();
    QTextCursor link = view->document()->find(QStringLiteral("visit"));
    link.setPosition(link.selectionStart() + 2);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->cursorRect(link).center());
    app().OnActivate();
    app().OnCommand(kCtlNone, kCmdNextNews);
    app().OnCommand(kCtlNone, kCmdReadOnline);
    app().OnActivate();
    app().OnCommand(kCtlNone, kCmdNextNews);
    app().OnCommand(kCtlNone, kCmdReadOnline);
    // Only web and mail addresses leave the program, and nothing else minimises the window.
    EXPECT_EQ(opened_, QList<QUrl>({QUrl(QStringLiteral("http://127.0.0.1/local")),
                                    QUrl(QStringLiteral("http://127.0.0.1/x")),
                                    QUrl(QStringLiteral("http://127.0.0.1/?page=qf_x"))}));
    EXPECT_FALSE(app().mainWindow()->softKeys()->isHidden());
    EXPECT_FALSE(app().mainWindow()->isMinimized());
    EXPECT_TRUE(view->toPlainText().isEmpty());
}

TEST_F(StoryScreenTest, RelativeLinksLeadFromTheStorysOwnAddress) {
    const std::string links = "&lt;a href=\"more.html\"&gt;more&lt;/a&gt; "
                              "&lt;a href=\"/top\"&gt;top&lt;/a&gt; "
                              "&lt;a href=\"qf_http://127.0.0.1/x\"&gt;visit&lt;/a&gt; "
                              "&lt;a href=\"qf_here.html\"&gt;here&lt;/a&gt; "
                              "&lt;a href=\"qf_http://127.0.0.1/y\"&gt;other&lt;/a&gt;";
    StartWithStories({{"Web", "", false, "http://127.0.0.1:8080/news/story.html", links},
                      {"Nowhere", "", false, "", links}});
    OpenChannel(0);
    OpenStory(0);
    HtmlView* view = storyScreen()->view();
    const auto click = [&](const QString& text) {
        QTextCursor link = view->document()->find(text);
        link.setPosition(link.selectionStart() + 1);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->cursorRect(link).center());
        app().OnActivate();
    };
    // The program's own links are never resolved, however they are written.
    for (const char* text : {"more", "top", "visit", "here"}) {
        click(QString::fromLatin1(text));
    }
    // From the keyboard it is the link at the cursor, not the one clicked last.
    view->setTextCursor(view->document()->find(QStringLiteral("other")));
    QTest::keyClick(view, Qt::Key_Return);
    app().OnActivate();
    EXPECT_EQ(opened_, QList<QUrl>({QUrl(QStringLiteral("http://127.0.0.1:8080/news/more.html")),
                                    QUrl(QStringLiteral("http://127.0.0.1:8080/top")),
                                    QUrl(QStringLiteral("http://127.0.0.1/x")),
                                    QUrl(QStringLiteral("http://127.0.0.1/y"))}));

    opened_.clear();
    app().OnCommand(kCtlNone, kCmdNextNews);
    ASSERT_EQ(Shown(), QStringLiteral("Nowhere"));
    for (const char* text : {"more", "visit"}) {
        click(QString::fromLatin1(text));
    }
    EXPECT_EQ(opened_, QList<QUrl>({QUrl(QStringLiteral("http://127.0.0.1/x"))}));
}

} // namespace
} // namespace qf::ui::test
