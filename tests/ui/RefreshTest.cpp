#include "NewsFixture.h"
#include "net/RefreshEngine.h"
#include "support/TestServer.h"
#include "ui/ProgressBar.h"

#include <QToolButton>
#include <chrono>

namespace qf::ui::test {
namespace {

class RefreshTest : public UiFixture {
protected:
    // Channels "Good" (3 stories), "Missing" (404) and "Endless" (a body that never ends), in
    // that order on the channels screen.
    RefreshTest() {
        std::vector<TestStory> good;
        for (const std::string n : {"0", "1", "2"}) {
            good.push_back({"Story " + n, "", false, "http://127.0.0.1/Good/" + n});
        }
        server_.addRoute({"/good", 200, FeedOf(good)});
        server_.addRoute({"/missing", 404, "gone"});
        server_.addRoute({"/endless", 200, "<rss>", {}, qf::test::Route::Body::Endless});
        WriteStore([this](ChannelStore& store) {
            Category& category = store.DefaultCategory();
            AddTestChannel(category, u"Good", 0, 0, server_.url("/good"));
            AddTestChannel(category, u"Missing", 0, 0, server_.url("/missing"));
            AddTestChannel(category, u"Endless", 0, 0, server_.url("/endless"));
        });
        StartApp();
    }
    int Icon(int row) {
        const ChannelListModel& model = *channelsScreen()->model();
        return model.data(model.index(row), ChannelListModel::kIconRole).toInt();
    }

    qf::test::TestServer server_;
};

TEST_F(RefreshTest, RefreshAllFromTheMenuUpdatesRowsUntilTheStopButtonEndsIt) {
    OpenMenu();
    ASSERT_EQ(MenuEntry(kCmdRefreshAll)->text(), "Refresh All Channels");
    MenuEntry(kCmdRefreshAll)->trigger();
    ASSERT_TRUE(channelsScreen()->progressShown());
    ASSERT_TRUE(WaitFor([this] { return Icon(2) == kChannelUpdating; }));
    EXPECT_EQ(Icon(0), kChannelIdle);
    EXPECT_EQ(Row(0).itemCount(), 3);
    EXPECT_EQ(Row(0).newItemCount(), 3);
    EXPECT_EQ(Icon(1), kChannelFailed);
    EXPECT_TRUE(
        Row(1).errorText().view().starts_with(u"Failed to download the channel; Error code: 404@"));
    OpenMenu();
    EXPECT_EQ(MenuEntry(kCmdRefreshAll)->text(), "Stop Refresh");

    channelsScreen()->progress()->stopButton()->click();
    EXPECT_TRUE(app().store().refresh().stopRequested());
    EXPECT_TRUE(app().store().refresh().abortRequested());
    ASSERT_TRUE(WaitFor([this] { return !app().store().refresh().busy(); }));
    ASSERT_TRUE(WaitFor([this] { return Icon(2) != kChannelUpdating; }));
    EXPECT_TRUE(WaitFor([this] { return !channelsScreen()->progressShown(); }));
    OpenMenu();
    EXPECT_EQ(MenuEntry(kCmdRefreshAll)->text(), "Refresh All Channels");
}

TEST_F(RefreshTest, DownloadChannelUpdatesOnlyTheSelectedRowAndMarkAllIsSaved) {
    channelsScreen()->SelectRow(&Row(0));
    Command(kCmdDownloadChannel);
    ASSERT_TRUE(WaitFor([this] { return Row(0).itemCount() == 3 && Icon(0) == kChannelIdle; }));
    EXPECT_TRUE(WaitFor([this] { return !channelsScreen()->progressShown(); }));
    EXPECT_EQ(server_.hits("/missing"), 0);
    EXPECT_FALSE(app().store().refresh().busy());
    Command(kCmdMarkAllRead);
    EXPECT_EQ(Row(0).newItemCount(), 0);
    QuitApp();
    EXPECT_NE(qf::test::ReadFileBytes(CachedFeed(Row(0).id())).find("qf_wasRead=\"yes\""),
              std::string::npos);
}

TEST_F(RefreshTest, OpeningAChannelWithoutItsFeedDownloadsItAndAFailedRefreshEndsLikeADoneOne) {
    channelsScreen()->SelectRow(&Row(0));
    Command(kCmdShowChannel);
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    ASSERT_TRUE(WaitFor([this] { return ShownScreen() == kChannelScreen; }));
    EXPECT_EQ(channelScreen()->channel(), &Row(0));
    EXPECT_EQ(Row(0).items().size(), 3u);
    EXPECT_EQ(server_.hits("/good"), 1);

    Row(0).SetXmlUrl(WString(server_.url("/missing")));
    Command(kCmdRefreshChannel);
    ASSERT_TRUE(WaitFor([this] { return Icon(0) == kChannelFailed; }));
    EXPECT_FALSE(channelScreen()->progress()->isVisibleTo(channelScreen()));
    EXPECT_FALSE(app().store().refresh().busy());
    EXPECT_FALSE(app().store().refresh().stopRequested());
    OpenMenu();
    EXPECT_EQ(MenuEntry(kCmdRefreshChannel)->text(), "Refresh Channel");
    // Nothing is left in the way of the automatic update.
    app().store().SetAutoUpdate(1);
    FireAutoUpdate();
    EXPECT_TRUE(app().store().refresh().busy());
    EXPECT_TRUE(WaitFor([this] { return server_.hits("/endless") == 1; }));
    channelsScreen()->progress()->stopButton()->click();
    EXPECT_TRUE(WaitFor([this] { return !app().store().refresh().busy(); }));
}

// Side by side, one progress bar speaks for the window; one screen at a time, each has its own.
TEST_F(RefreshTest, OnlyTheChannelsPaneShowsTheProgressWhenThePanesStandSideBySide) {
    const auto showing = [this] {
        return QList<bool>{channelsScreen()->progress()->isVisibleTo(channelsScreen()),
                           channelScreen()->progress()->isVisibleTo(channelScreen())};
    };
    ResizeWindow(1200);
    Command(kCmdRefreshAll);
    ASSERT_TRUE(WaitFor([this] { return Icon(2) == kChannelUpdating; }));
    EXPECT_EQ(showing(), QList<bool>({true, false}));
    ResizeWindow(480);
    EXPECT_EQ(showing(), QList<bool>({true, true}));
    channelsScreen()->progress()->stopButton()->click();
    EXPECT_TRUE(WaitFor([this] { return !app().store().refresh().busy(); }));
}

TEST_F(RefreshTest, AChannelWhoseFirstDownloadFailsOpensWithItsErrorText) {
    const QListView* rows = channelsScreen()->list();
    QTest::mouseClick(rows->viewport(), Qt::LeftButton, {},
                      rows->visualRect(rows->model()->index(1, 0)).center());
    ASSERT_TRUE(WaitFor([this] { return ShownScreen() == kChannelScreen; }));
    EXPECT_EQ(Icon(1), kChannelFailed);
    EXPECT_EQ(channelScreen()->channel(), &Row(1));
    const NewsListModel& message = *channelScreen()->model();
    ASSERT_TRUE(message.messageMode());
    EXPECT_TRUE(message.index(0).data().toString().startsWith(
        "Failed to download the channel; Error code: 404@"));

    // Opened again, it shows the reason at once and is tried again all the same.
    Command(kCmdBack);
    ASSERT_EQ(ShownScreen(), kChannelsScreen);
    channelsScreen()->SelectRow(&Row(1));
    Command(kCmdShowChannel);
    EXPECT_EQ(ShownScreen(), kChannelScreen);
    EXPECT_TRUE(channelScreen()->model()->messageMode());
    EXPECT_TRUE(server_.awaitHits("/missing", 2));
    EXPECT_TRUE(WaitFor([this] { return Icon(1) == kChannelFailed; }));
}

// The News channel of the reading tests, now refreshed from a server that has one story more.
class RefreshUnderReaderTest : public NewsFixture {
protected:
    RefreshUnderReaderTest() {
        StartWithStories();
        std::vector<TestStory> newer{
            {"Echo", "Fri, 05 Jan 2024 10:00:00 GMT", false, "http://127.0.0.1/e", ""}};
        for (const TestStory& story : kFourStories) {
            newer.push_back({story.title, story.date, false, story.link, ""});
        }
        server_.addRoute({"/news", 200, FeedOf(newer)});
        News().SetXmlUrl(WString(server_.url("/news")));
    }
    Channel& News() { return Row(0); }
    bool Live(const NewsItem* item) {
        return std::ranges::any_of(News().items(),
                                   [item](const auto& live) { return live.get() == item; });
    }
    QString ShownTitle() { return QString::fromStdU16String(storyScreen()->item()->title().str()); }

    qf::test::TestServer server_;
};

TEST_F(RefreshUnderReaderTest, OpenScreensMoveToTheNewStoriesWhenARefreshLands) {
    OpenChannel(0);
    OpenStory(2);
    ASSERT_EQ(ShownTitle(), QStringLiteral("Charlie"));
    // The automatic update lands while the story is read.
    app().store().SetAutoUpdate(1);
    FireAutoUpdate();
    ASSERT_TRUE(
        WaitFor([this] { return News().items().size() == 5 && !app().store().refresh().busy(); }));
    EXPECT_EQ(Titles(), QStringList({"Echo", "Alpha", "Bravo", "Charlie", "Delta"}));
    EXPECT_TRUE(Live(storyScreen()->item()));
    EXPECT_EQ(ShownTitle(), "Charlie");
    EXPECT_EQ(news().SelectedItem(), storyScreen()->item());
    Command(kCmdPreviousNews);
    Command(kCmdPreviousNews);
    EXPECT_EQ(ShownTitle(), "Alpha");
    EXPECT_TRUE(Live(storyScreen()->item()) && storyScreen()->item()->isRead());
    EXPECT_EQ(News().newItemCount(), 1);

    // A tap made before a refresh lands opens and marks the story that took the tapped one's place.
    Command(kCmdBack);
    const QRect echo = news().list()->visualRect(news().model()->index(0));
    QTest::mouseClick(news().list()->viewport(), Qt::LeftButton, {}, echo.center());
    ASSERT_TRUE(app().engine().UpdateChannel(News(), 0));
    ASSERT_TRUE(WaitFor([this] { return ShownScreen() == kStoryScreen; }));
    EXPECT_EQ(ShownTitle(), "Echo");
    EXPECT_TRUE(Live(storyScreen()->item()));
    EXPECT_EQ(News().newItemCount(), 0);
    EXPECT_EQ(UnreadOnChannelsScreen(), 0);
    QuitApp();
    const std::string cached = qf::test::ReadFileBytes(CachedFeed(1));
    EXPECT_EQ(cached.find("qf_wasRead=\"no\""), std::string::npos) << cached;
    EXPECT_NE(cached.find("<item qf_wasRead=\"yes\"><title>Echo"), std::string::npos) << cached;
}

TEST_F(RefreshUnderReaderTest, QuittingDuringARefreshEndsAtOnceAndKeepsWhatWasRead) {
    server_.addRoute({.path = "/silent", .mode = qf::test::Route::Body::Silent});
    News().SetXmlUrl(WString(server_.url("/silent")));
    OpenChannel(0);
    OpenStory(0);
    Command(kCmdBack);
    Command(kCmdBack);
    Command(kCmdRefreshAll);
    ASSERT_TRUE(server_.awaitHits("/silent", 1));
    const auto start = std::chrono::steady_clock::now();
    EndApp();
    // The stop, not the server's 30-second time-out, ended the download.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_NE(StoreFileText().find("News"), std::string::npos);
    const std::string cached = qf::test::ReadFileBytes(CachedFeed(1));
    EXPECT_NE(cached.find("<item qf_wasRead=\"yes\"><title>Alpha"), std::string::npos) << cached;
}

} // namespace
} // namespace qf::ui::test
