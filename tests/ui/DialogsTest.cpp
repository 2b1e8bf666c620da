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

// A 480x800 phone: the dialog fills the window, nothing is wider than it and the fields scroll.
TEST_F(DialogsTest, PropertiesKeepCredentialsAndIntervalWhichARefreshAndTheStoreFileUse) {
    qf::test::TestServer server;
    server.addRoute({.path = "/private",
                     .body =
                         "<rss version=\"2.0\"><channel><title>Private</title><item>"
                         "<title>One</title><link>http://127.0.0.1/1</link></item></channel></rss>",
                     .basicAuth = "reader:s3cret"});
    app().store().SetUpdateValue(2);
    app().mainWindow()->resize(480, 800);
    QStringList shown;
    onDialog_ = [&](QDialog& dialog) {
        auto& properties = dynamic_cast<ChannelPropertiesDialog&>(dialog);
        properties.show();
        const auto* fields = properties.findChild<QScrollArea*>();
        EXPECT_EQ(properties.size(), QSize(480, 800));
        EXPECT_LE(fields->widget()->minimumSizeHint().width(), fields->viewport()->width());
        EXPECT_EQ(properties.password()->echoMode(), QLineEdit::Password);
        // Following the options, the box offers their interval: two hours here.
        shown << properties.userName()->text() << properties.password()->text()
              << QString::number(properties.asOptions()->isChecked())
              << QString::number(properties.interval()->isEnabled())
              << QString::number(properties.interval()->value())
              << properties.interval()->unitBox()->currentText();
        properties.address()->setText(QString::fromStdU16String(server.url("/private")));
        properties.userName()->setText(QStringLiteral("reader"));
        properties.password()->setText(QStringLiteral("s3cret"));
        properties.ownInterval()->click();
        properties.interval()->valueBox()->setValue(30);
        properties.interval()->unitBox()->setCurrentIndex(0);
        properties.accept();
        return properties.result();
    };
    Command(kCmdChannelProperties);
    EXPECT_EQ(shown, (QStringList{"", "", "1", "0", "2", "hours"}));
    EXPECT_EQ(Row(0).userName().str(), u"reader");
    EXPECT_EQ(Row(0).password().str(), u"s3cret");
    EXPECT_EQ(Row(0).updateValue(), 30);
    EXPECT_EQ(Row(0).updateUnit(), kUnitMinutes);
    // Without the credentials the server would answer 401 and the channel fail.
    Command(kCmdDownloadChannel);
    ASSERT_TRUE(WaitFor([this] { return Row(0).state() != kChannelUpdating; }));
    EXPECT_EQ(Row(0).hasErrors(), 0);
    EXPECT_EQ(Row(0).itemCount(), 1);

    shown.clear();
    onDialog_ = [&shown](QDialog& dialog) {
        auto& properties = dynamic_cast<ChannelPropertiesDialog&>(dialog);
        shown << properties.userName()->text() << properties.password()->text()
              << QString::number(properties.ownInterval()->isChecked())
              << QString::number(properties.interval()->value())
              << properties.interval()->unitBox()->currentText();
        properties.asOptions()->click();
        properties.accept();
        return properties.result();
    };
    Command(kCmdChannelProperties);
    EXPECT_EQ(shown, (QStringList{"reader", "s3cret", "1", "30", "minutes"}));
    EXPECT_EQ(Row(0).updateValue(), kIntervalNotSet);
    EXPECT_EQ(Row(0).updateUnit(), kIntervalNotSet);
    QuitApp();
    EXPECT_NE(StoreFileText().find(R"(userName="reader" password="s3cret" updateValue="-1" )"
                                   R"(updateUnit="-1")"),
              std::string::npos)
        << StoreFileText();
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

TEST_F(DialogsTest, OptionsKeepTheIntervalInTheStoreAndPicturesAndThemeInTheSettings) {
    QStringList shown;
    const auto choose = [this, &shown](const std::function<void(OptionsDialog&)>& play) {
        onDialog_ = [&shown, &play](QDialog& dialog) {
            auto& options = dynamic_cast<OptionsDialog&>(dialog);
            shown = {options.autoUpdate()->isChecked() ? "on" : "off",
                     QString::number(options.updateValue()->value()),
                     options.updateUnit()->currentText(),
                     options.showImages()->isChecked() ? "pictures" : "none",
                     options.theme()->currentText()};
            play(options);
            options.accept();
            return options.result();
        };
        Command(kCmdOptions);
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
