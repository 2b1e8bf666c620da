#include "ui/ChannelScreen.h"

#include "NewsFixture.h"
#include "parse/NewsItem.h"
#include "ui/ChannelListModel.h"
#include "ui/ChannelsScreen.h"
#include "ui/HtmlView.h"
#include "ui/MainWindow.h"
#include "ui/NewsListModel.h"
#include "ui/NewsRowDelegate.h"
#include "ui/StoryScreen.h"

#include <QListView>
#include <QTest>

namespace qf::ui::test {
namespace {

NewsItem Story(const char* date, int32_t read) {
    NewsItem item;
    FeedDate parsed;
    if (*date != '\0') {
        parsed.Parse(std::string_view(date));
    }
    item.SetDate(parsed);
    item.SetRead(read);
    return item;
}

TEST(NewsOrder, DateAndStatusCompareInBothDirectionsAndAnythingElseIsEqual) {
    const NewsItem early = Story("Mon, 01 Jan 2024 10:00:00 GMT", 0);
    const NewsItem late = Story("Tue, 02 Jan 2024 10:00:00 GMT", 1);
    const NewsItem undated = Story("", 0);
    const int32_t newestFirst = NewsSortParameter(kSortByDate, 0);
    const int32_t oldestFirst = NewsSortParameter(kSortByDate, 1);
    EXPECT_EQ(CompareNews(&late, &early, newestFirst), -1);
    EXPECT_EQ(CompareNews(&early, &late, newestFirst), 1);
    EXPECT_EQ(CompareNews(&early, &late, oldestFirst), -1);
    EXPECT_EQ(CompareNews(&undated, &early, oldestFirst), -1);
    EXPECT_EQ(CompareNews(&early, &early, newestFirst), 0);
    EXPECT_EQ(CompareNews(&late, &early, NewsSortParameter(kSortByDate, 2)), 0);

    const int32_t readFirst = NewsSortParameter(kSortByStatus, 0);
    const int32_t unreadFirst = NewsSortParameter(kSortByStatus, 1);
    EXPECT_EQ(CompareNews(&late, &early, readFirst), -1);
    EXPECT_EQ(CompareNews(&late, &early, unreadFirst), 1);
    EXPECT_EQ(CompareNews(&early, &undated, unreadFirst), 0);

    EXPECT_EQ(CompareNews(&late, &early, NewsSortParameter(kSortNone, 0)), 0);
    EXPECT_EQ(CompareNews(&late, &early, NewsSortParameter(3, 0)), 0);
    EXPECT_EQ(CompareNews(nullptr, &early, newestFirst), 0);
}

class ChannelScreenTest : public NewsFixture {
protected:
    bool Read(int row) {
        const NewsListModel& model = *channelScreen().model();
        return model.data(model.index(row), NewsListModel::kReadRole).toBool();
    }
    int ChannelsRowUnread(int row) {
        const ChannelListModel& model = *app().channelsScreen()->model();
        return model.data(model.index(row), ChannelListModel::kUnreadRole).toInt();
    }
};

TEST_F(ChannelScreenTest, OpenedChannelShowsItsBannerAndStoriesInStoredOrder) {
    StartWithStories();
    OpenChannel(0);
    EXPECT_TRUE(channelScreen().banner()->toPlainText().contains(QStringLiteral("News")));
    EXPECT_EQ(Titles(), QStringList({"Alpha", "Bravo", "Charlie", "Delta"}));
    EXPECT_FALSE(Read(0));
    EXPECT_TRUE(Read(1));
    const NewsListModel& model = *channelScreen().model();
    EXPECT_FALSE(model.data(model.index(0), NewsListModel::kDateRole).toString().isEmpty());
    EXPECT_GT(channelScreen().banner()->height(), 0);
    EXPECT_EQ(channelScreen().banner()->height(), channelScreen().height() * 15 / 100);
}

TEST_F(ChannelScreenTest, NewOnlyAndSortChoicesRefillAndReorderTheList) {
    StartWithStories();
    OpenChannel(0);
    app().OnCommand(kCtlNone, kCmdNewHeadlinesOnly);
    EXPECT_EQ(Titles(), QStringList({"Alpha", "Charlie"}));
    app().OnCommand(kCtlNone, kCmdNewHeadlinesOnly);
    EXPECT_EQ(Titles().size(), 4);

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
    EXPECT_EQ(app().store().sortBy(), kSortNone);
    EXPECT_EQ(app().store().sortOrder(), 0);
}

TEST_F(ChannelScreenTest, FailedChannelShowsOnlyItsErrorInARedAndGreyMessageRow) {
    StartWithStories();
    OpenChannel(1);
    ASSERT_EQ(Titles(),
              QStringList({"Failed to download the channel; Error code: 404@1/5/24 9:30 AM"}));
    EXPECT_TRUE(channelScreen().model()->messageMode());
    EXPECT_EQ(channelScreen().model()->ItemAt(0), nullptr);

    QListView* list = channelScreen().list();
    const QRect row = list->visualRect(channelScreen().model()->index(0));
    EXPECT_GT(row.height(), QFontMetrics(NewsRowDelegate::BoldFont(list->font())).height() * 3 - 1);
    const QImage shot = list->viewport()->grab(row).toImage();
    bool redLeft = false;
    bool greyRight = false;
    for (int y = 0; y < shot.height(); ++y) {
        for (int x = 0; x < shot.width(); ++x) {
            const QColor colour = shot.pixelColor(x, y);
            redLeft |= x < shot.width() / 3 && colour == QColor(255, 0, 0);
            greyRight |= x > shot.width() * 2 / 3 && colour == QColor(128, 128, 128);
        }
    }
    EXPECT_TRUE(redLeft);
    EXPECT_TRUE(greyRight);

    // The message row opens nothing.
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
    QCoreApplication::processEvents();
    EXPECT_EQ(app().screen(), kChannelScreen);
}

TEST_F(ChannelScreenTest, MarkAllUpdatesRowsCountsAndTheFilteredList) {
    StartWithStories();
    OpenChannel(0);
    app().OnCommand(kCtlNone, kCmdMarkAllRead);
    EXPECT_EQ(Titles().size(), 4);
    EXPECT_TRUE(Read(0) && Read(2));
    EXPECT_EQ(ChannelsRowUnread(0), 0);

    app().OnCommand(kCtlNone, kCmdNewHeadlinesOnly);
    EXPECT_TRUE(Titles().isEmpty());
    app().OnCommand(kCtlNone, kCmdMarkAllUnread);
    EXPECT_EQ(Titles().size(), 4);
    EXPECT_EQ(ChannelsRowUnread(0), 4);
}

TEST_F(ChannelScreenTest, KeyboardMovesOpensGoesBackAndStepsChannels) {
    StartWithStories();
    app().mainWindow()->activateWindow();
    OpenChannel(0);
    QListView* list = channelScreen().list();
    ASSERT_TRUE(list->hasFocus());
    // The first row is current once the list has the focus.
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Return);
    ASSERT_TRUE(WaitFor([this] { return app().screen() == kStoryScreen; }));
    EXPECT_EQ(app().storyScreen()->item(), channelScreen().model()->ItemAt(1));

    QTest::keyClick(app().mainWindow(), Qt::Key_Escape);
    ASSERT_EQ(app().screen(), kChannelScreen);
    EXPECT_TRUE(list->hasFocus());
    EXPECT_EQ(channelScreen().SelectedItem(), channelScreen().model()->ItemAt(1));

    QTest::keyClick(list, Qt::Key_Right);
    ASSERT_TRUE(WaitFor([this] { return channelScreen().channel()->id() == 2; }));
    QTest::keyClick(list, Qt::Key_Left);
    ASSERT_TRUE(WaitFor([this] { return channelScreen().channel()->id() == 1; }));
    EXPECT_EQ(Titles().size(), 4);
}

} // namespace
} // namespace qf::ui::test
