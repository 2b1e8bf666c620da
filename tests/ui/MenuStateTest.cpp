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
    QMenu* CategoryMenu() {
        return OpenMenu(QStringLiteral("View"))
            ->findChild<QMenu*>(QLatin1StringView(kCategorySubmenuName));
    }
};

TEST_F(MenuStateTest, ChannelEntriesNeedASelectedRowAndRefreshTextFollowsBusy) {
    StartWithCategories({u"Default"});
    OpenMenu();
    for (int command :
         {kCmdShowChannel, kCmdDownloadChannel, kCmdDeleteChannel, kCmdChannelProperties}) {
        EXPECT_FALSE(MenuEntry(command)->isEnabled()) << command;
    }
    EXPECT_EQ(MenuEntry(kCmdRefreshAll)->text(), "Refresh All Channels");

    channelsScreen()->SelectRow(&Row(0));
    app().store().busy() = 1;
    OpenMenu();
    EXPECT_TRUE(MenuEntry(kCmdDeleteChannel)->isEnabled());
    EXPECT_EQ(MenuEntry(kCmdRefreshAll)->text(), "Stop Refresh");
    // The category list is left alone while a refresh runs.
    EXPECT_EQ(CategoryMenu()->actions().size(), 1);
    app().store().busy() = 0;
}

TEST_F(MenuStateTest, CategorySubmenuListsTheCategoriesAndChecksTheShownOne) {
    StartWithCategories({u"World", u"Sports", u"Tech"});
    QMenu* categories = CategoryMenu();
    ASSERT_NE(categories, nullptr);
    EXPECT_EQ(categories->actions().size(), 4);
    EXPECT_EQ(categories->actions()[2]->text(), "Sports");
    EXPECT_EQ(Checked(categories), QStringList{"All Categories"});

    categories->actions()[2]->trigger();
    EXPECT_EQ(app().store().categoryId(), 1);
    EXPECT_EQ(Rows(), 1);
    OpenMenu(QStringLiteral("View"));
    EXPECT_EQ(Checked(categories), QStringList{"Sports"});
    EXPECT_FALSE(MenuEntry(kCmdNewChannelsOnly)->isChecked());
}

TEST_F(MenuStateTest, EveryCommandAboveTheCategoryBaseChoosesACategory) {
    StartWithCategories({u"A", u"B", u"C", u"D", u"E", u"F", u"G", u"H", u"I"});
    QMenu* categories = CategoryMenu();
    emit categories->aboutToShow();
    // The ninth category is entry 40109, the number of "Delete Channel", which needs a row.
    EXPECT_EQ(categories->actions().last()->text(), "I");
    EXPECT_TRUE(categories->actions().last()->isEnabled());
    EXPECT_FALSE(MenuEntry(kCmdDeleteChannel)->isEnabled());
    // "New" is 40108: with nine categories it also shows the eighth, as it always did.
    EXPECT_EQ(Rows(), 9);
    Command(kCmdNew);
    EXPECT_EQ(app().store().categoryId(), 7);
    ASSERT_EQ(Rows(), 1);
    EXPECT_EQ(Row(0).title(), u"H news");
    Command(kCmdAllCategories);
    EXPECT_EQ(app().store().categoryId(), -1);
    EXPECT_EQ(Rows(), 9);
}

} // namespace
} // namespace qf::ui::test
