#include "UiFixture.h"
#include "ui/AddChannelWizard.h"
#include "ui/HtmlView.h"

#include <QPushButton>
#include <QTimer>

namespace qf::ui::test {
namespace {

class FrameTest : public UiFixture {
protected:
    // One category for each name, with one channel "<name> news" in it.
    void WriteCategories(std::initializer_list<std::u16string> names) {
        WriteStore([names](ChannelStore& store) {
            for (const auto& name : names) {
                auto* category = store.AddCategory(std::make_unique<Category>(WString(name)));
                AddTestChannel(*category, name + u" news", 1, 3);
            }
        });
    }
    void StartWithCategories(std::initializer_list<std::u16string> names) {
        WriteCategories(names);
        StartApp();
    }
    QStringList Titles() const {
        QStringList titles;
        for (int row = 0; row < Rows(); ++row) {
            titles << QString::fromStdU16String(Row(row).title().str());
        }
        return titles;
    }
    QMenu* CategoryMenu() {
        return OpenMenu(QStringLiteral("View"))
            ->findChild<QMenu*>(QLatin1StringView(kCategorySubmenuName));
    }
};

TEST_F(FrameTest, FirstRunShowsWelcomeInAPhoneSizedWindowThatComesBackAsItWasLeft) {
    App& first = StartApp();
    EXPECT_LT(first.mainWindow()->width(), first.mainWindow()->height());
    first.mainWindow()->setGeometry(40, 50, 500, 420);
    // A store never loaded is not written at exit; the settings are.
    QuitApp();
    EXPECT_TRUE(StoreFileText().empty());
    const std::string settings =
        qf::test::ReadFileBytes(dir_ / "config" / "Orvelcraft" / "Quillfeed.conf");
    EXPECT_NE(settings.find("[Options]"), std::string::npos);
    EXPECT_NE(settings.find("[Window]"), std::string::npos);

    App& app = StartApp();
    EXPECT_EQ(app.mainWindow()->size(), QSize(500, 420));
    EXPECT_EQ(ShownScreen(), kWelcomeScreen);
    EXPECT_EQ(app.mainWindow()->windowTitle(), "Quillfeed");
    EXPECT_TRUE(welcomeScreen()->view()->toPlainText().contains(u"Welcome to Quillfeed!"));
    EXPECT_EQ(app.mainWindow()->softKeys()->leftKey()->text(), "Continue");
    EXPECT_EQ(AutoUpdateTimer(), nullptr);
    // F1 is the left soft key.
    app.mainWindow()->show();
    QTest::keyClick(app.mainWindow(), Qt::Key_F1);
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_TRUE(app.store().loaded());
    EXPECT_EQ(app.mainWindow()->softKeys()->leftKey()->text(), "New");
    QuitApp();
    EXPECT_NE(StoreFileText().find("<opml"), std::string::npos);
}

TEST_F(FrameTest, UnreadableStoreFileIsReportedAndAnEmptyListShown) {
    std::filesystem::create_directories(DataFolder());
    qf::test::WriteFileBytes(DataFolder() / "QFChannels.opml", "<opml><body>");
    StartApp();
    ASSERT_EQ(told_.size(), 1);
    EXPECT_TRUE(told_[0].startsWith(QStringLiteral("Failed to open Channels file '")));
    EXPECT_TRUE(told_[0].endsWith(QStringLiteral("QFChannels.opml'.")));
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_EQ(Rows(), 0);
}

TEST_F(FrameTest, UnreadableStoreFileOffersTheNewestBackupInItsPlace) {
    const auto backups = DataFolder() / "Backups";
    std::filesystem::create_directories(backups);
    WriteCategories({u"A"});
    std::filesystem::rename(DataFolder() / "QFChannels.opml",
                            backups / "QFChannels-2024-03-04.opml");
    WriteCategories({u"A", u"B"});
    std::filesystem::rename(DataFolder() / "QFChannels.opml",
                            backups / "QFChannels-2024-03-05.opml");
    const std::string newest = qf::test::ReadFileBytes(backups / "QFChannels-2024-03-05.opml");
    qf::test::WriteFileBytes(DataFolder() / "QFChannels.opml", "<opml><body>");

    StartApp();
    ASSERT_EQ(asked_.size(), 1);
    EXPECT_TRUE(asked_[0].startsWith(QStringLiteral("Failed to open Channels file '")));
    EXPECT_TRUE(asked_[0].contains(QStringLiteral("QFChannels.opml'.")));
    EXPECT_TRUE(asked_[0].endsWith(QStringLiteral("Restore the newest backup, of 2024-03-05?")));
    EXPECT_EQ(Rows(), 2);
    EXPECT_EQ(StoreFileText(), newest);
    EXPECT_EQ(qf::test::ReadFileBytes(DataFolder() / "QFChannels.opml.broken"), "<opml><body>");
    ASSERT_EQ(told_.size(), 1);
    EXPECT_TRUE(told_[0].contains(QStringLiteral("QFChannels.opml.broken")));
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
}

// The menu checks the text size, an unknown one as Medium, and ClearType.
TEST_F(FrameTest, CommandsActOnlyOnTheScreensTheyBelongTo) {
    App& app = StartApp();
    app.store().settings().SetTextSize(9);
    QMenu* sizes = OpenMenu(QStringLiteral("Text Size"));
    EXPECT_EQ(Checked(sizes), QStringList{"Medium"});
    EXPECT_TRUE(MenuEntry(kCmdClearType)->isChecked());
    EXPECT_TRUE(Command(kCmdTextLargest));
    EXPECT_EQ(app.store().settings().textSize(), 4);
    EXPECT_EQ(welcomeScreen()->view()->textSizeLevel(), 4);
    EXPECT_TRUE(Command(kCmdClearType));
    EXPECT_EQ(app.store().settings().clearType(), 0);
    EXPECT_FALSE(welcomeScreen()->view()->clearType());
    OpenMenu(QStringLiteral("Text Size"));
    EXPECT_EQ(Checked(sizes), QStringList{"Largest"});
    EXPECT_FALSE(MenuEntry(kCmdClearType)->isChecked());
    EXPECT_FALSE(Command(kCmdRefreshAll));
    EXPECT_FALSE(Command(12345));
    // Until the store is loaded, Back goes to the channels screen from anywhere.
    EXPECT_TRUE(Command(kCmdBack));
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    app.SetScreen(kStoryScreen);
    Command(kCmdBack);
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_FALSE(Command(kCmdTextSmallest));
    EXPECT_EQ(app.store().settings().textSize(), 4);
    EXPECT_TRUE(Command(kCmdReadOffline));
    EXPECT_TRUE(Command(kCmdAbout));
    EXPECT_EQ(told_, QStringList{"About"});
}

TEST_F(FrameTest, NewChannelsOnlyHidesChannelsWithoutUnreadStories) {
    WriteStore([](ChannelStore& store) {
        Category& category = store.DefaultCategory();
        AddTestChannel(category, u"Read", 0, 4);
        AddTestChannel(category, u"Unread", 2, 4);
    });
    App& app = StartApp();
    EXPECT_EQ(Rows(), 2);
    Command(kCmdNewChannelsOnly);
    EXPECT_EQ(app.store().newChannels(), 1);
    ASSERT_EQ(Rows(), 1);
    EXPECT_EQ(Row(0).title(), u"Unread");
}

TEST_F(FrameTest, StoredChannelsOpenWithTheAutoUpdateAndDeletingOneAsksFirst) {
    StartWithCategories({u"A", u"B"});
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_EQ(Rows(), 2);
    ASSERT_NE(AutoUpdateTimer(), nullptr);
    EXPECT_TRUE(AutoUpdateTimer()->isActive());
    EXPECT_EQ(AutoUpdateTimer()->interval(), 30000);
    Channel* doomed = &Row(0);
    const std::string doomedTitle = doomed->title().toUtf8();
    const std::string keptTitle = Row(1).title().toUtf8();
    const auto cached = CachedFeed(doomed->id());
    qf::test::WriteFileBytes(cached, "<rss/>");
    channelsScreen()->SelectRow(doomed);

    answer_ = false;
    Command(kCmdDeleteChannel);
    EXPECT_EQ(asked_, QStringList{"Do you want to delete this channel?"});
    EXPECT_EQ(Rows(), 2);
    answer_ = true;
    Command(kCmdDeleteChannel);
    EXPECT_EQ(Rows(), 1);
    EXPECT_FALSE(std::filesystem::exists(cached));
    QuitApp();
    EXPECT_EQ(StoreFileText().find(doomedTitle), std::string::npos);
    EXPECT_NE(StoreFileText().find(keptTitle), std::string::npos);
}

TEST_F(FrameTest, ChannelEntriesNeedASelectedRowAndRefreshTextFollowsBusy) {
    StartWithCategories({u"Default"});
    OpenMenu();
    for (int command :
         {kCmdShowChannel, kCmdDownloadChannel, kCmdDeleteChannel, kCmdChannelProperties}) {
        EXPECT_FALSE(MenuEntry(command)->isEnabled()) << command;
    }
    EXPECT_EQ(MenuEntry(kCmdRefreshAll)->text(), "Refresh All Channels");

    channelsScreen()->SelectRow(&Row(0));
    app().store().refresh().Start();
    OpenMenu();
    EXPECT_TRUE(MenuEntry(kCmdDeleteChannel)->isEnabled());
    EXPECT_EQ(MenuEntry(kCmdRefreshAll)->text(), "Stop Refresh");
    // The category list is left alone while a refresh runs.
    EXPECT_EQ(CategoryMenu()->actions().size(), 1);
    app().store().refresh().Finish();
}

TEST_F(FrameTest, CategorySubmenuListsTheCategoriesAndChecksTheShownOne) {
    StartWithCategories({u"World", u"Sports", u"Tech"});
    // The list keeps the store's order of categories.
    EXPECT_EQ(Titles(), (QStringList{"World news", "Sports news", "Tech news"}));
    QMenu* categories = CategoryMenu();
    ASSERT_NE(categories, nullptr);
    EXPECT_EQ(categories->actions().size(), 4);
    EXPECT_EQ(categories->actions()[2]->text(), "Sports");
    EXPECT_EQ(Checked(categories), QStringList{"All Categories"});

    categories->actions()[2]->trigger();
    EXPECT_EQ(app().store().categoryId(), 1);
    EXPECT_EQ(Titles(), QStringList{"Sports news"});
    OpenMenu(QStringLiteral("View"));
    EXPECT_EQ(Checked(categories), QStringList{"Sports"});
    EXPECT_FALSE(MenuEntry(kCmdNewChannelsOnly)->isChecked());
    categories->actions()[0]->trigger();
    EXPECT_EQ(app().store().categoryId(), -1);
    EXPECT_EQ(Rows(), 3);
}

// Commands whose numbers lie among the category entries' do their own job only.
TEST_F(FrameTest, OtherCommandsLeaveTheCategoryShownAlone) {
    StartWithCategories({u"A", u"B", u"C", u"D", u"E", u"F", u"G", u"H"});
    for (int row = 0; row < Rows(); ++row) {
        qf::test::WriteFileBytes(CachedFeed(Row(row).id()), "<rss/>");
    }
    bool wizardShown = false;
    wizard_ = [&wizardShown](AddChannelWizard& wizard) {
        wizardShown = true;
        wizard.reject();
    };
    Command(kCmdNew);
    EXPECT_TRUE(wizardShown);
    channelsScreen()->SelectRow(&Row(0));
    Command(kCmdShowChannel);
    ASSERT_EQ(ShownScreen(), kChannelScreen);
    Command(kCmdNextChannel);
    EXPECT_EQ(channelScreen()->channel()->title(), u"B news");
    Command(kCmdRefreshChannel);
    EXPECT_TRUE(app().store().refresh().busy());
    ASSERT_TRUE(WaitFor([this] { return !app().store().refresh().busy(); }));
    Command(kCmdBack);
    channelsScreen()->SelectRow(&Row(2));
    Command(kCmdDeleteChannel);
    EXPECT_EQ(Titles(),
              (QStringList{"A news", "B news", "D news", "E news", "F news", "G news", "H news"}));
    EXPECT_EQ(app().store().categoryId(), -1);
    // The eighth category's entry shows it, and opens no wizard.
    wizardShown = false;
    CategoryMenu()->actions()[8]->trigger();
    EXPECT_FALSE(wizardShown);
    EXPECT_EQ(Titles(), QStringList{"H news"});
}

} // namespace
} // namespace qf::ui::test
