#include "UiFixture.h"
#include "model/DataFolder.h"
#include "platform/FsPath.h"
#include "ui/ChannelPropertiesDialog.h"
#include "ui/OptionsDialog.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>

namespace qf::ui::test {
namespace {

// The channel "Old title" of the category "News", with its cached feed, and a card put in after
// the first start (a first start would choose it as the volume).
class DialogsTest : public UiFixture {
protected:
    DialogsTest() {
        WriteStore([](ChannelStore& store) {
            auto* category = store.AddCategory(std::make_unique<Category>(WString(u"News")));
            Channel& channel =
                AddTestChannel(*category, u"Old title", 1, 2, u"http://127.0.0.1:9/a");
            channel.SetId(1);
            FeedDate updated;
            updated.SetFields(2024, 3, 5, 14, 30, 0, 0);
            channel.SetUpdateTime(updated);
        });
        qf::test::WriteFileBytes(DataFolder() / "Channel1.xml", "<rss/>");
        StartApp();
        std::filesystem::create_directories(card_);
        channelsScreen()->SelectRow(&Row(0));
    }
    // Runs Options, choosing the volume at `index`; answers the volumes offered and the index
    // of the one in use.
    QStringList ChooseVolume(int index) {
        QStringList offered;
        onDialog_ = [index, &offered](QDialog& dialog) {
            QComboBox* volumes = dynamic_cast<OptionsDialog&>(dialog).volumes();
            for (int i = 0; i < volumes->count(); ++i) {
                offered << volumes->itemText(i);
            }
            offered << QString::number(volumes->currentIndex());
            volumes->setCurrentIndex(index);
            dialog.accept();
            return dialog.result();
        };
        Command(kCmdOptions);
        return offered;
    }
    bool InMainMemory(const char* file) { return std::filesystem::exists(DataFolder() / file); }
    bool OnCard(const char* file) {
        return std::filesystem::exists(ToFsPath(*DataFolderOfVolume(u"\\Card")) / file);
    }

    const std::filesystem::path card_ = dir_ / "cards" / "Card";
};

TEST_F(DialogsTest, PropertiesShowTheChannelAndDoneStoresAddressAndTitle) {
    onDialog_ = [](QDialog& dialog) {
        dynamic_cast<ChannelPropertiesDialog&>(dialog).title()->setText(QStringLiteral("New"));
        dialog.reject();
        return dialog.result();
    };
    Command(kCmdChannelProperties);
    EXPECT_EQ(Row(0).title().str(), u"Old title");

    QStringList shown;
    onDialog_ = [&shown](QDialog& dialog) {
        auto& properties = dynamic_cast<ChannelPropertiesDialog&>(dialog);
        shown << properties.windowTitle() << properties.address()->text()
              << properties.title()->text() << properties.lastUpdated()->text();
        properties.address()->setText(QStringLiteral("http://127.0.0.1:9/b"));
        properties.title()->clear();
        properties.accept();
        return properties.result();
    };
    Command(kCmdChannelProperties);
    ASSERT_EQ(shown.size(), 4);
    EXPECT_EQ(shown[0], "Properties");
    EXPECT_EQ(shown[1], "http://127.0.0.1:9/a");
    EXPECT_EQ(shown[2], "Old title");
    EXPECT_FALSE(shown[3].isEmpty());
    EXPECT_EQ(Row(0).xmlUrl().str(), u"http://127.0.0.1:9/b");
    // An emptied title is stored as an empty text, not left as it was.
    EXPECT_FALSE(Row(0).title().isNull());
    EXPECT_EQ(Row(0).title().str(), u"");
}

// The boxes keep their selection while the menu opens, whichever way it is asked for.
TEST_F(DialogsTest, PropertiesBoxesOpenTheEditMenuByKeysAndByAHeldPress) {
    QStringList opened;
    onDialog_ = [&opened](QDialog& dialog) {
        dialog.show();
        // Built when it is first opened.
        const auto menu = [&dialog] {
            return dialog.findChild<QMenu*>(QStringLiteral("EditMenu"));
        };
        const auto open = [&opened, menu](QLineEdit* box, const std::function<void()>& ask) {
            box->activateWindow();
            box->setFocus();
            box->setSelection(0, 3);
            ask();
            if (WaitFor([menu] { return menu() != nullptr && menu()->isVisible(); })) {
                opened << box->selectedText();
                menu()->close();
            }
        };
        auto& properties = dynamic_cast<ChannelPropertiesDialog&>(dialog);
        for (QLineEdit* box : {properties.address(), properties.title()}) {
            open(box, [box] { QTest::keyClick(box, Qt::Key_Menu); });
            open(box, [box] { QTest::keyClick(box, Qt::Key_F10, Qt::ShiftModifier); });
            open(box, [box] { QTest::mousePress(box, Qt::LeftButton, {}, QPoint(4, 4)); });
            QTest::mouseRelease(box, Qt::LeftButton, {}, QPoint(4, 4));
        }
        // A press let go at once reaches the box as an ordinary click.
        QTest::mouseClick(properties.title(), Qt::LeftButton, {}, QPoint(4, 4));
        opened << properties.title()->selectedText();
        return static_cast<int>(QDialog::Rejected);
    };
    Command(kCmdChannelProperties);
    EXPECT_EQ(opened, (QStringList{"htt", "htt", "htt", "Old", "Old", "Old", ""}));
}

TEST_F(DialogsTest, OptionsMoveTheDataFolderOnlyWhenAskedToAndItCan) {
    // The volume in use moves nothing, and neither does a No.
    ChooseVolume(0);
    EXPECT_TRUE(asked_.isEmpty());
    answer_ = false;
    ChooseVolume(1);
    EXPECT_EQ(asked_.size(), 1);
    EXPECT_EQ(app().store().settings().storageVolume().str(), u"\\");
    EXPECT_TRUE(InMainMemory("QFChannels.opml"));

    // A file where the card's folder for the data should go: nothing can be moved there.
    qf::test::WriteFileBytes(card_ / "Quillfeed", "in the way");
    answer_ = true;
    ChooseVolume(1);
    EXPECT_EQ(told_.size(), 1);
    EXPECT_EQ(app().store().settings().storageVolume().str(), u"\\");
    EXPECT_TRUE(InMainMemory("Channel1.xml"));
    QuitApp();
    EXPECT_TRUE(InMainMemory("QFChannels.opml"));

    std::filesystem::remove(card_ / "Quillfeed");
    StartApp();
    EXPECT_EQ(ChooseVolume(1), (QStringList{"Main Memory", "Card", "0"}));
    EXPECT_EQ(asked_.size(), 3);
    EXPECT_EQ(app().store().settings().storageVolume().str(), u"\\Card");
    EXPECT_TRUE(OnCard("Channel1.xml"));
    EXPECT_FALSE(InMainMemory("Channel1.xml"));
    QuitApp();
    EXPECT_TRUE(OnCard("QFChannels.opml"));
    EXPECT_FALSE(InMainMemory("QFChannels.opml"));
}

} // namespace
} // namespace qf::ui::test
