#include "ui/AddChannelWizard.h"

#include "UiFixture.h"
#include "ui/EnterUrlPage.h"
#include "ui/HowToAddPage.h"
#include "ui/PickChannelsPage.h"
#include "ui/PickOpmlPage.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>

namespace qf::ui::test {
namespace {

constexpr char16_t kBbcTopStories[] = u"http://feeds.bbci.co.uk/news/rss.xml";

const char kNestedOpml[] = R"(<?xml version="1.0"?>
<opml version="1.0"><head/><body>
<outline text="Local">
  <outline text="Weather" xmlUrl="http://127.0.0.1:9/weather"/>
  <outline text="Town hall">
    <outline text="Council" xmlUrl="http://127.0.0.1:9/council"/>
  </outline>
</outline>
<outline text="Loose" xmlUrl="http://127.0.0.1:9/loose"/>
</body></opml>
)";

// The user's side of the wizard: keys and clicks on its real widgets.
class AddChannelWizardTest : public UiFixture {
protected:
    static QTreeWidget* Tree(AddChannelWizard& wizard) { return wizard.pickChannelsPage()->tree(); }
    static QStringList ChildTexts(const QTreeWidgetItem* item) {
        QStringList texts;
        for (int i = 0; i < item->childCount(); ++i) {
            texts << item->child(i)->text(0);
        }
        return texts;
    }
    static QTreeWidgetItem* Child(const QTreeWidgetItem* item, const QString& text) {
        const int row = ChildTexts(item).indexOf(text);
        EXPECT_GE(row, 0) << "no item " << text.toStdString();
        return item->child(row);
    }
    // Toggles the item's check box with the space bar, as a user without a pen does.
    static void Toggle(QTreeWidget* tree, QTreeWidgetItem* item) {
        tree->setCurrentItem(item);
        QTest::keyClick(tree, Qt::Key_Space);
    }
    static void ChooseRow(AddChannelWizard& wizard, int row) {
        QListWidget* list = wizard.howToAddPage()->list();
        list->setCurrentRow(0);
        for (int i = 0; i < row; ++i) {
            QTest::keyClick(list, Qt::Key_Down);
        }
        QTest::keyClick(list, Qt::Key_Return);
    }
    static void ClickBack(AddChannelWizard& wizard) { wizard.button(QWizard::BackButton)->click(); }
    static std::vector<std::u16string> Titles(const Category& category) {
        std::vector<std::u16string> titles;
        for (const auto& channel : category.channels()) {
            titles.emplace_back(channel->title().view());
        }
        return titles;
    }
    std::filesystem::path VolumeFolder() const { return dir_ / "home"; }
};

// Finish merges the checked channels into their categories; with none checked, or on Cancel,
// the store stays as it was.
TEST_F(AddChannelWizardTest, DirectoryTreeOffersEveryCategoryButNotTheChannelsAlreadyHeld) {
    WriteStore([](ChannelStore& store) {
        AddTestChannel(store.DefaultCategory(), u"Held", 0, 0,
                       u"HTTP://FEEDS.BBCI.CO.UK/news/rss.xml");
        auto* podcasts = store.AddCategory(std::make_unique<Category>(WString(u"podcasts")));
        AddTestChannel(*podcasts, u"Mine", 0, 0, u"http://127.0.0.1:9/mine");
    });
    App& app = StartApp();
    wizard_ = [](AddChannelWizard& wizard) {
        EXPECT_EQ(wizard.windowTitle(), "Add Channel");
        EXPECT_EQ(wizard.howToAddPage()->list()->currentRow(), 0);
        EXPECT_FALSE(wizard.button(QWizard::BackButton)->isEnabled());
        ChooseRow(wizard, 0);
        EXPECT_EQ(wizard.currentId(), kPickChannelsPage);
        QTreeWidget* tree = Tree(wizard);
        EXPECT_EQ(tree->topLevelItemCount(), 1);
        QTreeWidgetItem* root = tree->topLevelItem(0);
        EXPECT_EQ(root->text(0), "All Categories");
        EXPECT_EQ(ChildTexts(root),
                  (QStringList{"News", "Entertainment", "Podcasts", "Sports", "Business",
                               "Computers", "Health", "Travel", "Science / Technology"}));
        QTreeWidgetItem* news = root->child(0);
        EXPECT_EQ(news->childCount(), 12);
        EXPECT_EQ(news->child(0)->text(0), "BBC News - World");
        EXPECT_FALSE(news->isExpanded());
        EXPECT_EQ(PickChannelsPage::CategoryOf(news)->channels().size(), 13u);
        EXPECT_EQ(PickChannelsPage::ChannelOf(news->child(0))->xmlUrl().view(),
                  u"http://feeds.bbci.co.uk/news/world/rss.xml");
        // Checking an item checks only what lies below it.
        QTreeWidgetItem* travel = Child(root, "Travel");
        Toggle(tree, root);
        EXPECT_EQ(news->checkState(0), Qt::Checked);
        EXPECT_EQ(news->child(11)->checkState(0), Qt::Checked);
        EXPECT_EQ(travel->child(1)->checkState(0), Qt::Checked);
        Toggle(tree, news);
        EXPECT_EQ(news->child(0)->checkState(0), Qt::Unchecked);
        EXPECT_EQ(news->child(11)->checkState(0), Qt::Unchecked);
        EXPECT_EQ(root->checkState(0), Qt::Checked);
        EXPECT_EQ(travel->child(0)->checkState(0), Qt::Checked);
        Toggle(tree, travel->child(0));
        EXPECT_EQ(travel->checkState(0), Qt::Checked);
        Toggle(tree, root);
        EXPECT_EQ(travel->child(1)->checkState(0), Qt::Unchecked);
        QTest::keyClick(tree, Qt::Key_Return);
        EXPECT_EQ(wizard.result(), QDialog::Accepted);
    };
    Command(kCmdNew);
    const auto& categories = app.store().categories();
    ASSERT_EQ(categories.size(), 2u);
    EXPECT_EQ(categories[0]->channels().size(), 1u);
    EXPECT_EQ(categories[1]->channels().size(), 1u);
    EXPECT_TRUE(app.store().Contains(kBbcTopStories));

    const int32_t firstNewId = app.store().nextId();
    wizard_ = [](AddChannelWizard& wizard) {
        ChooseRow(wizard, 0);
        QTreeWidget* tree = Tree(wizard);
        QTreeWidgetItem* root = tree->topLevelItem(0);
        Toggle(tree, Child(root, "Podcasts"));
        Toggle(tree, Child(Child(root, "Entertainment"), "Deadline"));
        // Enter on the tree finishes.
        QTest::keyClick(tree, Qt::Key_Return);
    };
    Command(kCmdNew);
    ASSERT_EQ(categories.size(), 3u);
    EXPECT_EQ(Titles(*categories[1]),
              (std::vector<std::u16string>{u"Mine", u"NPR - Up First", u"This American Life"}));
    EXPECT_EQ(categories[2]->name().view(), u"Entertainment");
    EXPECT_EQ(Titles(*categories[2]), std::vector<std::u16string>{u"Deadline"});
    // Ids are handed out in the order of the tree, where Entertainment comes first.
    EXPECT_EQ(categories[2]->channels()[0]->id(), firstNewId);
    EXPECT_EQ(categories[1]->channels()[1]->id(), firstNewId + 1);
    EXPECT_EQ(categories[1]->channels()[2]->id(), firstNewId + 2);
    EXPECT_EQ(Rows(), 5);
    wizard_ = [](AddChannelWizard& wizard) {
        ChooseRow(wizard, 0);
        Toggle(Tree(wizard), Tree(wizard)->topLevelItem(0));
        wizard.reject();
    };
    Command(kCmdNew);
    EXPECT_EQ(Rows(), 5);
}

TEST_F(AddChannelWizardTest, UrlPathFromTheWelcomeScreenAddsOneChannelWithTheProposedTitle) {
    App& app = StartApp();
    wizard_ = [](AddChannelWizard& wizard) {
        ChooseRow(wizard, 1);
        EXPECT_EQ(wizard.currentId(), kEnterUrlPage);
        QLineEdit* url = wizard.enterUrlPage()->urlBox();
        EXPECT_EQ(wizard.enterUrlPage()->titleBox()->text(), "Channel #1");
        EXPECT_TRUE(wizard.button(QWizard::FinishButton)->isVisible());
        // The boxes have the clipboard menu.
        QTest::mouseClick(url, Qt::RightButton, {}, QPoint(5, 5));
        auto* menu = wizard.findChild<QMenu*>(QStringLiteral("EditMenu"));
        ASSERT_TRUE(menu != nullptr && menu->isVisible());
        menu->close();
        QTest::keyClicks(url, QStringLiteral("http://127.0.0.1:9/typed"));
        QTest::keyClick(url, Qt::Key_Return);
    };
    Command(kCmdContinue);
    EXPECT_EQ(ShownScreen(), kChannelsScreen);
    EXPECT_TRUE(app.store().loaded());
    ASSERT_EQ(Rows(), 1);
    EXPECT_EQ(Row(0).xmlUrl().view(), u"http://127.0.0.1:9/typed");
    EXPECT_EQ(Row(0).title().view(), u"Channel #1");
    EXPECT_EQ(Row(0).id(), 1);
}

TEST_F(AddChannelWizardTest, OpmlPathListsTheVolumeFilesBrowsesAnywhereAndBackReturnsToThem) {
    std::filesystem::create_directories(VolumeFolder());
    qf::test::WriteFileBytes(VolumeFolder() / "town.opml", kNestedOpml);
    qf::test::WriteFileBytes(VolumeFolder() / "Archive.OPML", "");
    qf::test::WriteFileBytes(VolumeFolder() / "notes.txt", kNestedOpml);
    App& app = StartApp();
    Command(kCmdContinue);
    wizard_ = [](AddChannelWizard& wizard) {
        ChooseRow(wizard, 2);
        EXPECT_EQ(wizard.currentId(), kPickOpmlPage);
        QListWidget* files = wizard.pickOpmlPage()->list();
        EXPECT_EQ(files->count(), 2);
        EXPECT_EQ(files->item(0)->text(), "Archive.OPML");
        EXPECT_EQ(files->currentRow(), 0);
        // The empty file leaves the tree empty.
        QTest::keyClick(files, Qt::Key_Return);
        EXPECT_EQ(Tree(wizard)->topLevelItemCount(), 0);
        ClickBack(wizard);
        EXPECT_EQ(wizard.currentId(), kPickOpmlPage);
        files->setCurrentRow(1);
        QTest::keyClick(files, Qt::Key_Return);
        QTreeWidget* tree = Tree(wizard);
        QTreeWidgetItem* root = tree->topLevelItem(0);
        EXPECT_EQ(ChildTexts(root), (QStringList{"Local", "Default"}));
        EXPECT_EQ(ChildTexts(root->child(0)), (QStringList{"Weather", "Council"}));
        Toggle(tree, root->child(0)->child(1));
        wizard.button(QWizard::FinishButton)->click();
    };
    Command(kCmdNew);
    ASSERT_EQ(app.store().categories().size(), 1u);
    EXPECT_EQ(app.store().categories()[0]->name().view(), u"Local");
    EXPECT_EQ(Titles(*app.store().categories()[0]), std::vector<std::u16string>{u"Council"});

    // Browse takes a file from anywhere; a feed is no OPML file, with nothing to pick from.
    AddChannelWizard wizard(app.store(), {}, nullptr);
    wizard.show();
    ChooseRow(wizard, 2);
    PickOpmlPage* page = wizard.pickOpmlPage();
    QString offered;
    auto chosen = dir_ / "feed.xml";
    qf::test::WriteFileBytes(chosen,
                             "<rss version=\"2.0\"><channel><title>T</title></channel></rss>");
    page->SetFileChooser([&offered, &chosen](QWidget*, const QString& folder) {
        offered = folder;
        return QString::fromStdString(chosen.string());
    });
    page->browseButton()->click();
    EXPECT_EQ(offered.toStdString(), VolumeFolder().string());
    QTest::keyClick(page->list(), Qt::Key_Return);
    EXPECT_EQ(Tree(wizard)->topLevelItemCount(), 0);
    ClickBack(wizard);
    chosen = dir_ / "elsewhere.opml";
    qf::test::WriteFileBytes(chosen, kNestedOpml);
    page->browseButton()->click();
    EXPECT_EQ(page->list()->count(), 4);
    EXPECT_EQ(page->list()->currentItem()->text(), "elsewhere.opml");
    QTest::keyClick(page->list(), Qt::Key_Return);
    EXPECT_EQ(Tree(wizard)->topLevelItem(0)->childCount(), 2);

    // From the built-in directory, Back leads to the first page instead.
    ClickBack(wizard);
    ClickBack(wizard);
    ChooseRow(wizard, 0);
    ClickBack(wizard);
    EXPECT_EQ(wizard.currentId(), kHowToAddPage);
    EXPECT_EQ(wizard.howToAddPage()->list()->currentRow(), 0);
}

} // namespace
} // namespace qf::ui::test
