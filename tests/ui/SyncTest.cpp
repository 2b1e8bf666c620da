#include "UiFixture.h"
#include "platform/Text.h"
#include "support/TestServer.h"
#include "sync/SyncAccount.h"
#include "ui/OptionsDialog.h"
#include "ui/ProgressBar.h"
#include "ui/SyncAccountBox.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace qf::ui::test {
namespace {

// Two channels, the first with unread stories, and an address where no sync server answers.
class SyncTest : public UiFixture {
protected:
    SyncTest() {
        WriteStore([](ChannelStore& store) {
            AddTestChannel(store.DefaultCategory(), u"First", 2, 5);
            AddTestChannel(store.DefaultCategory(), u"Second", 0, 3);
        });
        StartApp();
    }
    // The Options dialog's account group, played by `play`; then Done.
    void PlayAccount(const std::function<void(SyncAccountBox&)>& play) {
        RunDialog<OptionsDialog>(kCmdOptions,
                                 [&play](OptionsDialog& options) { play(*options.account()); });
    }

    const std::u16string nowhere_ =
        Utf8ToUtf16("http://127.0.0.1:" + std::to_string(qf::test::ClosedPort()));
};

TEST_F(SyncTest, SyncNowWithoutAnAccountOnlySaysWhereToLogIn) {
    OpenMenu();
    ASSERT_NE(MenuEntry(kCmdSyncNow), nullptr);
    EXPECT_EQ(MenuEntry(kCmdSyncNow)->text(), "Sync Now");
    MenuEntry(kCmdSyncNow)->trigger();
    EXPECT_EQ(told_, QStringList{"Log in to a sync account in Options first."});
    EXPECT_FALSE(app().store().refresh().busy());
    EXPECT_FALSE(channelsScreen()->progressShown());
}

TEST_F(SyncTest, AFailedSyncTellsWhyAndLeavesTheStoreAsItWas) {
    ASSERT_TRUE(SaveSyncAccount({nowhere_, u"reader", "token"}));
    Command(kCmdSyncNow);
    EXPECT_TRUE(app().store().refresh().busy());
    EXPECT_TRUE(channelsScreen()->progressShown());
    // A second sync and the Options wait for this one; the refresh command would stop it.
    Command(kCmdSyncNow);
    Command(kCmdOptions);
    EXPECT_EQ(told_, QStringList(2, "Please wait until the sync has finished."));
    OpenMenu();
    EXPECT_EQ(MenuEntry(kCmdRefreshAll)->text(), "Stop Refresh");

    ASSERT_TRUE(WaitFor([this] { return told_.size() == 3; }));
    EXPECT_TRUE(told_.back().startsWith("Sync failed: ")) << told_.back().toStdString();
    EXPECT_FALSE(app().store().refresh().busy());
    EXPECT_FALSE(channelsScreen()->progressShown());
    ASSERT_EQ(Rows(), 2);
    EXPECT_EQ(Row(0).newItemCount(), 2);
    EXPECT_EQ(Row(1).itemCount(), 3);
}

TEST_F(SyncTest, OptionsLogInOnlyWithAServerThatAcceptsAndLogOutForgetsTheAccount) {
    // A server that does not answer: the user is told, nothing is kept, the boxes stay editable.
    PlayAccount([this](SyncAccountBox& box) {
        EXPECT_EQ(box.logButton()->text(), "Log in");
        EXPECT_FALSE(box.logButton()->isEnabled());
        box.server()->setText(QString::fromStdU16String(nowhere_));
        box.user()->setText("reader");
        box.password()->setText("secret");
        QTest::keyClick(box.password(), Qt::Key_Return);
        EXPECT_FALSE(box.server()->isEnabled());
        ASSERT_TRUE(WaitFor([this] { return !told_.isEmpty(); }));
        EXPECT_TRUE(told_.front().startsWith("Login failed: ")) << told_.front().toStdString();
        EXPECT_TRUE(box.server()->isEnabled());
        EXPECT_EQ(box.logButton()->text(), "Log in");
    });
    EXPECT_FALSE(LoadSyncAccount().has_value());

    // A kept account shows read-only, without its password, until Log out forgets it.
    ASSERT_TRUE(SaveSyncAccount({u"http://127.0.0.1:1/api", u"reader", "token"}));
    PlayAccount([](SyncAccountBox& box) {
        EXPECT_EQ(box.state()->text(), "Logged in as reader");
        EXPECT_EQ(box.server()->text(), "http://127.0.0.1:1/api");
        EXPECT_TRUE(box.server()->isReadOnly());
        EXPECT_FALSE(box.password()->isVisibleTo(&box));
        box.logButton()->click();
        EXPECT_EQ(box.logButton()->text(), "Log in");
        EXPECT_FALSE(box.server()->isReadOnly());
        EXPECT_TRUE(box.password()->isVisibleTo(&box));
        EXPECT_TRUE(box.state()->text().isEmpty());
    });
    EXPECT_FALSE(LoadSyncAccount().has_value());
}

} // namespace
} // namespace qf::ui::test
