#include "UiFixture.h"
#include "model/DataFolder.h"
#include "platform/FsPath.h"
#include "ui/ChannelListModel.h"
#include "ui/ChannelPropertiesDialog.h"
#include "ui/ChannelsScreen.h"
#include "ui/OptionsDialog.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

namespace qf::ui::test {
namespace {

class DialogsTest : public UiFixture {
protected:
    void WriteOneChannel() {
        WriteStore([](ChannelStore& store) {
            auto* category = store.AddCategory(std::make_unique<Category>(WString(u"News")));
            Channel& channel =
                AddTestChannel(*category, u"Old title", 1, 2, u"http://127.0.0.1:9/a");
            channel.SetId(1);
            FeedDate updated;
            updated.SetFields(2024, 3, 5, 14, 30, 0, 0);
            channel.SetUpdateTime(updated);
        });
    }
    Channel* First() { return app().store().categories()[0]->channels()[0].get(); }
    std::filesystem::path CardDataFolder(const std::u16string& card) {
        return ToFsPath(*DataFolderOfVolume(u"\\" + card));
    }
};

TEST_F(DialogsTest, PropertiesShowTheChannelAndDoneStoresAddressAndTitle) {
    WriteOneChannel();
    StartApp();
    channelsScreen()->SelectRow(First());
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
    app().OnCommand(kCtlNone, kCmdChannelProperties);
    ASSERT_EQ(shown.size(), 4);
    EXPECT_EQ(shown[0], "Properties");
    EXPECT_EQ(shown[1], "http://127.0.0.1:9/a");
    EXPECT_EQ(shown[2], "Old title");
    EXPECT_FALSE(shown[3].isEmpty());
    EXPECT_EQ(First()->xmlUrl().str(), u"http://127.0.0.1:9/b");
    // An emptied title is stored as an empty text, not left as it was.
    EXPECT_FALSE(First()->title().isNull());
    EXPECT_EQ(First()->title().str(), u"");
}

TEST_F(DialogsTest, PropertiesCancelledChangeNothing) {
    WriteOneChannel();
    StartApp();
    channelsScreen()->SelectRow(First());
    onDialog_ = [](QDialog& dialog) {
        dynamic_cast<ChannelPropertiesDialog&>(dialog).title()->setText(QStringLiteral("New"));
        dialog.reject();
        return dialog.result();
    };
    app().OnCommand(kCtlNone, kCmdChannelProperties);
    EXPECT_EQ(First()->title().str(), u"Old title");
}

TEST_F(DialogsTest, OptionsMoveTheDataFolderToTheChosenCard) {
    WriteOneChannel();
    qf::test::WriteFileBytes(DataFolder() / "Channel1.xml", "<rss/>");
    // A card put in after the first start: a first start would choose it as the volume.
    StartApp();
    std::filesystem::create_directories(dir_ / "cards" / "Card");
    QStringList entries;
    onDialog_ = [&entries](QDialog& dialog) {
        QComboBox* volumes = dynamic_cast<OptionsDialog&>(dialog).volumes();
        for (int i = 0; i < volumes->count(); ++i) {
            entries << volumes->itemText(i);
        }
        entries << QString::number(volumes->currentIndex());
        volumes->setCurrentIndex(1);
        dialog.accept();
        return dialog.result();
    };
    app().OnCommand(kCtlNone, kCmdOptions);
    EXPECT_EQ(entries, (QStringList{"Main Memory", "Card", "0"}));
    EXPECT_EQ(asked_.size(), 1);
    EXPECT_EQ(app().store().settings().storageVolume().str(), u"\\Card");
    EXPECT_TRUE(std::filesystem::exists(CardDataFolder(u"Card") / "Channel1.xml"));
    EXPECT_FALSE(std::filesystem::exists(DataFolder() / "Channel1.xml"));
    QuitApp();
    EXPECT_TRUE(std::filesystem::exists(CardDataFolder(u"Card") / "QFChannels.opml"));
    EXPECT_FALSE(std::filesystem::exists(DataFolder() / "QFChannels.opml"));
}

TEST_F(DialogsTest, OptionsMoveNothingForTheVolumeInUseOrWhenTheUserSaysNo) {
    WriteOneChannel();
    StartApp();
    std::filesystem::create_directories(dir_ / "cards" / "Card");
    int choice = 0;
    onDialog_ = [&choice](QDialog& dialog) {
        dynamic_cast<OptionsDialog&>(dialog).volumes()->setCurrentIndex(choice);
        dialog.accept();
        return dialog.result();
    };
    app().OnCommand(kCtlNone, kCmdOptions);
    EXPECT_TRUE(asked_.isEmpty());
    choice = 1;
    answer_ = false;
    app().OnCommand(kCtlNone, kCmdOptions);
    EXPECT_EQ(asked_.size(), 1);
    EXPECT_EQ(app().store().settings().storageVolume().str(), u"\\");
    EXPECT_TRUE(std::filesystem::exists(DataFolder() / "QFChannels.opml"));
}

TEST_F(DialogsTest, OptionsKeepTheVolumeInUseWhenTheMoveFails) {
    WriteOneChannel();
    qf::test::WriteFileBytes(DataFolder() / "Channel1.xml", "<rss/>");
    StartApp();
    // A file where the card's folder for the data should go: nothing can be moved there.
    std::filesystem::create_directories(dir_ / "cards" / "Card");
    qf::test::WriteFileBytes(dir_ / "cards" / "Card" / "Quillfeed", "in the way");
    onDialog_ = [](QDialog& dialog) {
        dynamic_cast<OptionsDialog&>(dialog).volumes()->setCurrentIndex(1);
        dialog.accept();
        return dialog.result();
    };
    app().OnCommand(kCtlNone, kCmdOptions);
    EXPECT_EQ(told_.size(), 1);
    EXPECT_EQ(app().store().settings().storageVolume().str(), u"\\");
    EXPECT_TRUE(std::filesystem::exists(DataFolder() / "Channel1.xml"));
    QuitApp();
    EXPECT_TRUE(std::filesystem::exists(DataFolder() / "QFChannels.opml"));
}

} // namespace
} // namespace qf::ui::test
