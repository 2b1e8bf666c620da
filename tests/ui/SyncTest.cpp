#include "UiFixture.h"
#include "platform/Text.h"
#include "support/GReaderServer.h"
#include "support/TestServer.h"
#include "sync/GReaderClient.h"
#include "sync/SyncAccount.h"
#include "ui/OptionsDialog.h"
#include "ui/ProgressBar.h"
#include "ui/SyncAccountBox.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace qf::ui::test {
namespace {

// Two channels, the first with unread stories, a sync server with one user, and an address where
// no sync server answers.
class SyncTest : public UiFixture {
protected:
    SyncTest() {
        reader_.addUser("alice", "secret");
        WriteStore([](ChannelStore& store) {
            AddTestChannel(store.DefaultCategory(), u"First", 2, 5, u"http://127.0.0.1:9/first");
            AddTestChannel(store.DefaultCategory(), u"Second", 0, 3, u"http://127.0.0.1:9/second");
        });
        StartApp();
    }
    // The Options dialog's account group, played by `play`; then Done.
    void PlayAccount(const std::function<void(SyncAccountBox&)>& play) {
        RunDialog<OptionsDialog>(kCmdOptions,
                                 [&play](OptionsDialog& options) { play(*options.account()); });
    }

    void LogIn(SyncAccountBox& box, const QString& password) {
        told_.clear();
        box.server()->setText(QString::fromStdU16String(reader_.url()));
        box.user()->setText("alice");
        box.password()->setText(password);
        QTest::keyClick(box.password(), Qt::Key_Return);
        EXPECT_FALSE(box.server()->isEnabled());
        ASSERT_TRUE(WaitFor([&box] { return box.server()->isEnabled(); }));
    }

    qf::test::EnvVar noProxy_{"no_proxy", "*"};
    qf::test::GReaderServer reader_;
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

TEST_F(SyncTest, SyncNowJoinsTheServersSubscriptionsAndSaysWhatItDid) {
    reader_.addFeed("http://127.0.0.1:1/gamma", "Gamma", "Tech");
    const LoginResult login = GReaderClient::Login(reader_.url(), u"alice", u"secret");
    ASSERT_TRUE(login.ok);
    ASSERT_TRUE(SaveSyncAccount({reader_.url(), u"alice", login.authToken}));
    Command(kCmdSyncNow);
    ASSERT_TRUE(WaitFor([this] { return !told_.isEmpty(); }));
    EXPECT_TRUE(
        told_.front().startsWith("Sync finished.\nChannels added here: 1, on the server: 2."))
        << told_.front().toStdString();
    EXPECT_EQ(reader_.subscriptions().size(), 3u);
    EXPECT_NE(app().store().FindCategory(u"Tech"), nullptr);
}

TEST_F(SyncTest, OptionsLogInOnlyWithAServerThatAcceptsAndLogOutForgetsTheAccount) {
    // A refused password: the user is told why, nothing is kept, the boxes stay editable; then
    // the right one logs in.
    PlayAccount([this](SyncAccountBox& box) {
        EXPECT_EQ(box.logButton()->text(), "Log in");
        EXPECT_FALSE(box.logButton()->isEnabled());
        LogIn(box, "wrong");
        ASSERT_EQ(told_.size(), 1);
        EXPECT_TRUE(told_.front().startsWith("Login failed: ")) << told_.front().toStdString();
        EXPECT_EQ(box.logButton()->text(), "Log in");
        EXPECT_FALSE(LoadSyncAccount().has_value());
        LogIn(box, "secret");
        EXPECT_EQ(box.state()->text(), "Logged in as alice");
        EXPECT_EQ(box.logButton()->text(), "Log out");
    });
    ASSERT_TRUE(LoadSyncAccount().has_value());
    EXPECT_EQ(LoadSyncAccount()->user, u"alice");
    ASSERT_TRUE(ForgetSyncAccount());

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
