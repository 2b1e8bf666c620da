#include "UiFixture.h"
#include "ui/ChannelListModel.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/MainWindow.h"
#include "ui/RowTitle.h"

#include <QApplication>
#include <QListView>
#include <QMenu>
#include <QMouseEvent>
#include <QTest>

namespace qf::ui::test {
namespace {

class ChannelRowsTest : public UiFixture {
protected:
    QString Counts(int row) {
        const ChannelListModel& model = *channelsScreen()->model();
        const QModelIndex index = model.index(row);
        return CountText(model.data(index, ChannelListModel::kUnreadRole).toInt(),
                         model.data(index, ChannelListModel::kTotalRole).toInt(),
                         channelsScreen()->unreadCountAlone());
    }
    bool Bold(int row) {
        const ChannelListModel& model = *channelsScreen()->model();
        return model.data(model.index(row), ChannelListModel::kLiveUnreadRole).toInt() != 0;
    }
};

TEST(RowTitle, NumericReferencesMoveTheRestByItsByteCount) {
    // 233 replaces the "&"; nine bytes (four and a half characters) of " au lait" move left.
    EXPECT_EQ(RowTitle(u"caf&#233; au lait"), u"caf\u00e9 au l au lait");
    EXPECT_EQ(RowTitle(u"a&#10;b"), u"ab");
    EXPECT_EQ(RowTitle(u"line&#10;break here"), u"linebreak reak here");
    EXPECT_EQ(RowTitle(u"&#0; &#abc; &#x41; &amp;"), u"&#0; &#abc; &#x41; &amp;");
    EXPECT_EQ(RowTitle(u"no end &#65"), u"no end &#65");
    EXPECT_EQ(RowTitle(u"&#65;&#66;"), u"A&#6;B");
}

TEST_F(ChannelRowsTest, RowsShowCountsAndBoldWhileUnread) {
    WriteStore([](ChannelStore& store) {
        Category& category = store.DefaultCategory();
        AddTestChannel(category, u"Empty", 0, 0);
        AddTestChannel(category, u"Some unread", 3, 12);
        AddTestChannel(category, u"All read", 0, 12);
    });
    StartApp();
    EXPECT_EQ(Counts(0), QString());
    EXPECT_EQ(Counts(1), QStringLiteral("3/12"));
    EXPECT_TRUE(Bold(1));
    EXPECT_EQ(Counts(2), QStringLiteral("0/12"));
    EXPECT_FALSE(Bold(2));
}

TEST_F(ChannelRowsTest, NarrowSmartphoneShowsTheUnreadCountAlone) {
    WriteStore([](ChannelStore& store) { AddTestChannel(store.DefaultCategory(), u"A", 3, 12); });
    StartApp({true, 12});
    app().mainWindow()->resize(200, 320);
    app().mainWindow()->show();
    ASSERT_LT(channelsScreen()->width(), 240);
    EXPECT_EQ(Counts(0), QStringLiteral("3"));
    app().mainWindow()->resize(480, 640);
    QTest::qWait(1);
    EXPECT_EQ(Counts(0), QStringLiteral("3/12"));
}

TEST_F(ChannelRowsTest, TapOpensAChannelAndRightClickShowsItsMenu) {
    WriteStore([](ChannelStore& store) {
        AddTestChannel(store.DefaultCategory(), u"Local", 1, 1, u"http://127.0.0.1:9/feed");
    });
    StartApp();
    // A cached feed lets the channel open without a download.
    Channel* channel = channelsScreen()->model()->ChannelAt(0);
    std::filesystem::create_directories(DataFolder());
    qf::test::WriteFileBytes(DataFolder() / ("Channel" + std::to_string(channel->id()) + ".xml"),
                             "<rss version=\"2.0\"><channel><title>Local</title><item>"
                             "<title>Story</title><link>http://127.0.0.1:9/1</link>"
                             "<description>Body</description></item></channel></rss>");
    app().mainWindow()->show();
    QListView* list = channelsScreen()->list();
    const QRect row = list->visualRect(list->model()->index(0, 0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
    ASSERT_TRUE(WaitFor([this] { return ShownScreen() == kChannelScreen; }));
    EXPECT_EQ(channel->items().size(), 1u);
    // The second click of a double-click lands on the headline now under the pointer; it opens
    // nothing and marks nothing read.
    QWidget* headlines = channelScreen()->list()->viewport();
    for (const QEvent::Type type : {QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
        QMouseEvent second(type, row.center(), headlines->mapToGlobal(row.center()), Qt::LeftButton,
                           type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {});
        QApplication::sendEvent(headlines, &second);
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(ShownScreen(), kChannelScreen);
    EXPECT_FALSE(channel->items().front()->isRead());

    QTest::keyClick(app().mainWindow(), Qt::Key_Escape);
    emit list->customContextMenuRequested(row.center());
    ASSERT_TRUE(WaitFor([this] { return ContextMenu()->isVisible(); }));
    const QList<QAction*> entries = ContextMenu()->actions();
    EXPECT_EQ(entries.first()->text(), QStringLiteral("Show Channel"));
    EXPECT_EQ(entries.last()->text(), QStringLiteral("Channel Properties..."));
    ContextMenu()->close();
}

} // namespace
} // namespace qf::ui::test
