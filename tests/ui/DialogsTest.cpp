#include "UiFixture.h"
#include "model/DataFolder.h"
#include "model/UpdateInterval.h"
#include "platform/FsPath.h"
#include "support/TestServer.h"
#include "ui/ChannelPropertiesDialog.h"
#include "ui/IntervalEdit.h"
#include "ui/OptionsDialog.h"
#include "ui/Theme.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QRadioButton>
#include <QScrollArea>
#include <QSpinBox>

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
        RunDialog<OptionsDialog>(kCmdOptions, [index, &offered](OptionsDialog& options) {
            for (int i = 0; i < options.volumes()->count(); ++i) {
                offered << options.volumes()->itemText(i);
            }
            offered << QString::number(options.volumes()->currentIndex());
            options.volumes()->setCurrentIndex(index);
        });
        return offered;
    }
    bool InMainMemory(const char* file) { return std::filesystem::exists(DataFolder() / file); }
    bool OnCard(const char* file) {
        return std::filesystem::exists(ToFsPath(*DataFolderOfVolume(u"\\Card")) / file);
    }

    const std::filesystem::path card_ = dir_ / "cards" / "Card";
};

// A 480x800 phone: the dialog fills the window, nothing is wider than it and the fields scroll.
TEST_F(DialogsTest, PropertiesStoreWhatDoneKeepsWhichARefreshAndTheStoreFileUse) {
    RunDialog<ChannelPropertiesDialog>(
        kCmdChannelProperties,
        [](ChannelPropertiesDialog& properties) {
            properties.title()->setText(QStringLiteral("New"));
        },
        false);
    EXPECT_EQ(Row(0).title().str(), u"Old title");

    qf::test::TestServer server;
    server.addRoute({.path = "/private",
                     .body =
                         "<rss version=\"2.0\"><channel><title>Private</title><item>"
                         "<title>One</title><link>http://127.0.0.1/1</link></item></channel></rss>",
                     .basicAuth = "reader:s3cret"});
    app().store().SetUpdateValue(2);
    app().mainWindow()->resize(480, 800);
    QStringList shown;
    RunDialog<ChannelPropertiesDialog>(kCmdChannelProperties, [&](ChannelPropertiesDialog& dialog) {
        dialog.show();
        const auto* fields = dialog.findChild<QScrollArea*>();
        EXPECT_EQ(dialog.size(), QSize(480, 800));
        EXPECT_LE(fields->widget()->minimumSizeHint().width(), fields->viewport()->width());
        EXPECT_EQ(dialog.password()->echoMode(), QLineEdit::Password);
        // Following the options, the box offers their interval: two hours here.
        shown << dialog.address()->text() << dialog.title()->text()
              << QString::number(dialog.lastUpdated()->text().isEmpty())
              << dialog.userName()->text() << dialog.password()->text()
              << QString::number(dialog.asOptions()->isChecked())
              << QString::number(dialog.interval()->isEnabled())
              << QString::number(dialog.interval()->value())
              << dialog.interval()->unitBox()->currentText();
        dialog.address()->setText(QString::fromStdU16String(server.url("/private")));
        dialog.title()->clear();
        dialog.userName()->setText(QStringLiteral("reader"));
        dialog.password()->setText(QStringLiteral("s3cret"));
        dialog.ownInterval()->click();
        dialog.interval()->valueBox()->setValue(30);
        dialog.interval()->unitBox()->setCurrentIndex(0);
    });
    EXPECT_EQ(shown, (QStringList{"http://127.0.0.1:9/a", "Old title", "0", "", "", "1", "0", "2",
                                  "hours"}));
    // An emptied title is stored as an empty text, not left as it was.
    EXPECT_FALSE(Row(0).title().isNull());
    EXPECT_EQ(Row(0).title().str(), u"");
    // Only the new address with the credentials gets an answer other than a failure.
    Command(kCmdDownloadChannel);
    ASSERT_TRUE(WaitFor([this] { return Row(0).state() != kChannelUpdating; }));
    EXPECT_EQ(Row(0).hasErrors(), 0);
    EXPECT_EQ(Row(0).itemCount(), 1);

    shown.clear();
    RunDialog<ChannelPropertiesDialog>(kCmdChannelProperties, [&](ChannelPropertiesDialog& dialog) {
        shown << dialog.userName()->text() << dialog.password()->text()
              << QString::number(dialog.ownInterval()->isChecked())
              << QString::number(dialog.interval()->value())
              << dialog.interval()->unitBox()->currentText();
        dialog.asOptions()->click();
    });
    EXPECT_EQ(shown, (QStringList{"reader", "s3cret", "1", "30", "minutes"}));
    QuitApp();
    EXPECT_NE(StoreFileText().find(R"(userName="reader" password="s3cret" updateValue="-1" )"
                                   R"(updateUnit="-1")"),
              std::string::npos)
        << StoreFileText();
}

// The boxes keep their selection while the menu opens, whichever way it is asked for.
TEST_F(DialogsTest, PropertiesBoxesOpenTheEditMenuByKeysAndByAHeldPress) {
    QStringList opened;
    const auto play = [&opened](ChannelPropertiesDialog& dialog) {
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
        for (QLineEdit* box : {dialog.address(), dialog.title()}) {
            open(box, [box] { QTest::keyClick(box, Qt::Key_Menu); });
            open(box, [box] { QTest::keyClick(box, Qt::Key_F10, Qt::ShiftModifier); });
            open(box, [box] { QTest::mousePress(box, Qt::LeftButton, {}, QPoint(4, 4)); });
            QTest::mouseRelease(box, Qt::LeftButton, {}, QPoint(4, 4));
        }
        // A press let go at once reaches the box as an ordinary click.
        QTest::mouseClick(dialog.title(), Qt::LeftButton, {}, QPoint(4, 4));
        opened << dialog.title()->selectedText();
    };
    RunDialog<ChannelPropertiesDialog>(kCmdChannelProperties, play, false);
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

TEST_F(DialogsTest, OptionsKeepTheIntervalInTheStoreAndPicturesAndThemeInTheSettings) {
    QStringList shown;
    const auto choose = [this, &shown](const std::function<void(OptionsDialog&)>& play) {
        RunDialog<OptionsDialog>(kCmdOptions, [&shown, &play](OptionsDialog& options) {
            shown = {options.autoUpdate()->isChecked() ? "on" : "off",
                     QString::number(options.updateValue()->value()),
                     options.updateUnit()->currentText(),
                     options.showImages()->isChecked() ? "pictures" : "none",
                     options.theme()->currentText()};
            play(options);
        });
        QCoreApplication::processEvents();
    };
    const auto listBase = [this] { return channelsScreen()->list()->palette().base().color(); };
    choose([](OptionsDialog& options) {
        EXPECT_FALSE(options.updateValue()->isEnabled());
        options.autoUpdate()->setChecked(true);
        EXPECT_TRUE(options.updateValue()->isEnabled());
        options.updateValue()->setValue(3);
        options.updateUnit()->setCurrentIndex(kUnitDays);
        options.showImages()->setChecked(false);
        options.theme()->setCurrentIndex(ViewerSettings::kDarkTheme);
    });
    EXPECT_EQ(shown, (QStringList{"off", "1", "hours", "pictures", "Follow the desktop"}));
    EXPECT_EQ(app().store().autoUpdate(), 1);
    EXPECT_EQ(app().store().updateValue(), 3);
    EXPECT_EQ(app().store().updateUnit(), kUnitDays);
    EXPECT_EQ(listBase(), ThemePalette(Appearance::kDark).base().color());

    QuitApp();
    StartApp();
    EXPECT_EQ(listBase(), ThemePalette(Appearance::kDark).base().color());
    choose([](OptionsDialog&) {});
    EXPECT_EQ(shown, (QStringList{"on", "3", "days", "none", "Dark"}));
    EXPECT_TRUE(asked_.isEmpty());
}

} // namespace
} // namespace qf::ui::test
