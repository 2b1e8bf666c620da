#include "UiFixture.h"
#include "ui/ChannelListModel.h"
#include "ui/ChannelsScreen.h"
#include "ui/MainWindow.h"
#include "ui/RowTitle.h"

#include <QTest>

namespace qf::ui::test {
namespace {

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
    });
    StartApp({true, 12});
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
    app().mainWindow()->resize(200, 320);
    QTest::qWait(1);
    ASSERT_LT(channelsScreen()->width(), 240);
    EXPECT_EQ(counts(1), "3");
}

} // namespace
} // namespace qf::ui::test
