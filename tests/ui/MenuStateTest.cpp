#include "UiFixture.h"
#include "ui/ChannelListModel.h"
#include "ui/ChannelsScreen.h"
#include "ui/MainWindow.h"
#include "ui/SoftKeyBar.h"

#include <QMenu>

namespace qf::ui::test {
namespace {

class MenuStateTest : public UiFixture {
protected:
    void StartWithCategories(std::initializer_list<std::u16string> names) {
        WriteStore([names](ChannelStore& store) {
            for (const auto& name : names) {
                auto* category = store.AddCategory(std::make_unique<Category>(WString(name)));
                AddTestChannel(*category, name + u" news", 1, 3);
            }
        });
        StartApp();
    }
    QStringList Checked(QMenu* menu) {
        QStringList checked;
        for (QAction* action : menu->actions()) {
            if (action->isChecked()) {
                checked << action->text();
            }
        }
        return checked;
    }
};

TEST_F(MenuStateTest, ChannelEntriesNeedASelectedRowAndRefreshTextFollowsBusy) {
    StartWithCategories({u"Default"});
    OpenMenu();
    for (int command :
         {kCmdShowChannel, kCmdDownloadChannel, kCmdDeleteChannel, kCmdChannelProperties}) {
        EXPECT_FALSE(MenuEntry(command)->isEnabled()) << command;
    }
    EXPECT_EQ(MenuEntry(kCmdRefreshAll)->text(), QStringLiteral("Refresh All Channels"));

    channelsScreen()->SelectRow(channelsScreen()->model()->ChannelAt(0));
    app().store().refresh().Start();
    OpenMenu();
    EXPECT_TRUE(MenuEntry(kCmdDeleteChannel)->isEnabled());
    EXPECT_EQ(MenuEntry(kCmdRefreshAll)->text(), QStringLiteral("Stop Refresh"));
    // The category list is left alone while a refresh runs.
    QMenu* categories = OpenMenu(QStringLiteral("View"))
                            ->findChild<QMenu*>(QLatin1StringView(kCategorySubmenuName));
    EXPECT_EQ(categories->actions().size(), 1);
    app().store().refresh().Finish();
}

TEST_F(MenuStateTest, CategorySubmenuListsTheCategoriesAndChecksTheShownOne) {
    StartWithCategories({u"World", u"Sports", u"Tech"});
    OpenMenu(QStringLiteral("View"));
    QMenu* categories = OpenMenu(QStringLiteral("View"))
                            ->findChild<QMenu*>(QLatin1StringView(kCategorySubmenuName));
    ASSERT_NE(categories, nullptr);
    EXPECT_EQ(categories->actions().size(), 4);
    EXPECT_EQ(categories->actions()[2]->text(), QStringLiteral("Sports"));
    EXPECT_EQ(Checked(categories), QStringList{QStringLiteral("All Categories")});

    categories->actions()[2]->trigger();
    EXPECT_EQ(app().store().categoryId(), 1);
    EXPECT_EQ(channelsScreen()->model()->rowCount(), 1);
    OpenMenu(QStringLiteral("View"));
    EXPECT_EQ(Checked(categories), QStringList{QStringLiteral("Sports")});
    EXPECT_FALSE(MenuEntry(kCmdNewChannelsOnly)->isChecked());
}

TEST_F(MenuStateTest, CategoriesSharingACommandNumberStayEnabled) {
    StartWithCategories({u"A", u"B", u"C", u"D", u"E", u"F", u"G", u"H", u"I"});
    QMenu* categories = OpenMenu(QStringLiteral("View"))
                            ->findChild<QMenu*>(QLatin1StringView(kCategorySubmenuName));
    emit categories->aboutToShow();
    // The ninth category is entry 40109, the number of "Delete Channel", which needs a row.
    EXPECT_EQ(categories->actions().last()->text(), QStringLiteral("I"));
    EXPECT_TRUE(categories->actions().last()->isEnabled());
    EXPECT_FALSE(MenuEntry(kCmdDeleteChannel)->isEnabled());
}

TEST_F(MenuStateTest, WelcomeMenuChecksTextSizeAndClearType) {
    StartApp();
    app().store().settings().SetTextSize(9);
    QMenu* sizes = OpenMenu(QStringLiteral("Text Size"));
    EXPECT_EQ(Checked(sizes), QStringList{QStringLiteral("Medium")});
    EXPECT_TRUE(MenuEntry(kCmdClearType)->isChecked());
    app().OnCommand(kCtlNone, kCmdTextSmallest);
    app().OnCommand(kCtlNone, kCmdClearType);
    OpenMenu(QStringLiteral("Text Size"));
    EXPECT_EQ(Checked(sizes), QStringList{QStringLiteral("Smallest")});
    EXPECT_FALSE(MenuEntry(kCmdClearType)->isChecked());
}

TEST_F(MenuStateTest, ChannelScreenChecksSortAndDisablesPodcasts) {
    StartWithCategories({u"World"});
    app().SetScreen(kChannelScreen);
    OpenMenu(QStringLiteral("View"));
    EXPECT_TRUE(MenuEntry(kCmdDoNotSort)->isChecked());
    EXPECT_FALSE(MenuEntry(kCmdAscending)->isEnabled());
    EXPECT_FALSE(MenuEntry(kCmdPlayPodcast)->isEnabled());
    EXPECT_EQ(MenuEntry(kCmdRefreshChannel)->text(), QStringLiteral("Refresh Channel"));

    app().OnCommand(kCtlNone, kCmdSortByDate);
    app().OnCommand(kCtlNone, kCmdAscending);
    OpenMenu(QStringLiteral("View"));
    EXPECT_TRUE(MenuEntry(kCmdSortByDate)->isChecked());
    EXPECT_FALSE(MenuEntry(kCmdDoNotSort)->isChecked());
    EXPECT_TRUE(MenuEntry(kCmdAscending)->isEnabled());
    EXPECT_TRUE(MenuEntry(kCmdAscending)->isChecked());
}

TEST_F(MenuStateTest, StoryMenuLosesReadStoryOffline) {
    StartWithCategories({u"World"});
    app().SetScreen(kStoryScreen);
    EXPECT_NE(MenuEntry(kCmdReadOffline), nullptr);
    OpenMenu();
    EXPECT_EQ(MenuEntry(kCmdReadOffline), nullptr);
    EXPECT_NE(MenuEntry(kCmdReadOnline), nullptr);
}

} // namespace
} // namespace qf::ui::test
