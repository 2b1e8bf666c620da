#include "UiFixture.h"
#include "model/ChannelStore.h"
#include "model/DataFolder.h"
#include "model/NewsItem.h"
#include "platform/FsPath.h"
#include "render/StoryPage.h"
#include "support/TestEnv.h"
#include "ui/EditMenu.h"
#include "ui/HtmlView.h"
#include "ui/PrivateMessages.h"
#include "ui/ProgressBar.h"
#include "ui/Theme.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCoreApplication>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QProgressBar>
#include <QScrollBar>
#include <QTest>
#include <QTextDocument>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace qf::ui {
namespace {

// Keeps the private messages that a control posts to its frame.
class FrameRecorder : public QObject {
public:
    bool event(QEvent* event) override {
        if (event->type() >= QEvent::User) {
            const auto& message = static_cast<PrivateMessageEvent&>(*event);
            received.push_back({message.message(), message.sourceControl});
            return true;
        }
        return QObject::event(event);
    }
    std::vector<std::pair<int, int>> received;
};

TEST(ProgressBar, SplitFollowsThePositionOverTheRangeAndTheMiddleWhenEmpty) {
    EXPECT_EQ(SplitColumn(0, 100, 0, 10, 5), 50);
    EXPECT_EQ(SplitColumn(10, 100, 0, 10, 10), 110);
    EXPECT_EQ(SplitColumn(0, 101, 0, 10, 5), 51);
    EXPECT_EQ(SplitColumn(0, 100, 3, 3, 3), 50);
    // The position counts from zero whatever the low end of the range.
    EXPECT_EQ(SplitColumn(0, 100, 5, 15, 5), 50);
}

TEST(ProgressBar, TextReadsOnTheColourUnderEachHalfInBothThemes) {
    for (const Appearance appearance : {Appearance::kLight, Appearance::kDark}) {
        ChannelStore store;
        QWidget parent;
        parent.setPalette(ThemePalette(appearance));
        ProgressBar progress(store, &parent);
        progress.setGeometry(0, 0, 300, progress.PreferredHeight());
        progress.SetRange(0, 2);
        progress.SetPosition(1);
        progress.SetText(QStringLiteral("WWWWWWWWWWWWWWWWWWWWWWWW"));
        const QImage image = progress.bar()->grab().toImage();
        const int half = image.width() / 2;
        const QColor filled = image.pixelColor(2, image.height() / 2);
        const QColor empty = image.pixelColor(image.width() - 3, image.height() / 2);
        ASSERT_NE(filled, empty);
        EXPECT_TRUE(test::HasColour(image, TextOn(filled), {0, 0, half, image.height()}));
        EXPECT_TRUE(
            test::HasColour(image, TextOn(empty), {half, 0, image.width() - half, image.height()}));
        EXPECT_GE(ContrastRatio(TextOn(filled), filled), kMinimumTextContrast);
        EXPECT_GE(ContrastRatio(TextOn(empty), empty), kMinimumTextContrast);
    }
}

// Left and Right step only while the page needs no sideways scrolling.
TEST(HtmlView, EveryPageStartsAtItsTopAndLeftAndRightStepToTheNeighbours) {
    FrameRecorder frame;
    HtmlView view(&frame, 141, nullptr);
    view.resize(200, 100);
    view.show();
    std::u16string tall;
    for (int i = 0; i < 100; ++i) {
        tall += u"<p>line</p>";
    }
    view.SetPage(tall, true);
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
    ASSERT_GT(view.verticalScrollBar()->value(), 0);
    view.SetPage(tall, true);
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
    view.SetPage(std::nullopt, true);
    EXPECT_TRUE(view.toPlainText().isEmpty());

    view.SetPage(u"<p>short</p>", true);
    QTest::keyClick(&view, Qt::Key_Left);
    QTest::keyClick(&view, Qt::Key_Right);
    QCoreApplication::processEvents();
    const std::vector<std::pair<int, int>> expected = {{QFM_NAVPREVIOUS, 141}, {QFM_NAVNEXT, 141}};
    EXPECT_EQ(frame.received, expected);
    view.SetFitToScreen(false);
    view.SetPage(u"<p>" + std::u16string(400, u'w') + u"</p>", true);
    QCoreApplication::processEvents();
    ASSERT_TRUE(view.HasHorizontalScrollBar());
    QTest::keyClick(&view, Qt::Key_Right);
    QCoreApplication::processEvents();
    EXPECT_EQ(frame.received.size(), 2u);
}

TEST(HtmlView, PicturesComeOnlyFromLocalFilesAndTheScreen) {
    FrameRecorder frame;
    HtmlView view(&frame, 0, nullptr);
    // Nothing but a transparent dot stands where a picture cannot be had.
    const auto shown = [&view](const QString& name) {
        return view.document()->resource(QTextDocument::ImageResource, QUrl(name)).value<QImage>();
    };
    const QString remote = QStringLiteral("http://127.0.0.1:9/picture.png");
    EXPECT_LE(shown(remote).width(), 1);
    QImage supplied(4, 4, QImage::Format_RGB32);
    view.SetImageSupplier([&supplied](const QUrl&) { return supplied; });
    EXPECT_EQ(shown(QStringLiteral("qf_logo.bmp")).width(), 4);
    EXPECT_LE(shown(remote).width(), 1);
    EXPECT_TRUE(view.document()
                    ->resource(QTextDocument::StyleSheetResource,
                               QUrl(QStringLiteral("file:///etc/hostname")))
                    .toByteArray()
                    .isEmpty());
}

// The page keeps the path as it is; the view must not read its "#", "?" or "%" as parts of an
// address.
TEST(HtmlView, LogoShowsFromADataFolderWhosePathHoldsHashQuestionMarkAndPercent) {
    const qf::test::TempDir dir;
    const std::filesystem::path oddHome = dir / "odd #1 ?2 %41";
    std::filesystem::create_directories(oddHome);
    const qf::test::EnvVar home("QUILLFEED_HOME", oddHome.string());
    const qf::test::EnvVar cards("QUILLFEED_CARDS", (dir / "cards").string());
    const std::u16string folder = DataFolderOfVolume(u"\\").value_or(u"");
    std::filesystem::create_directories(ToFsPath(folder));
    QImage logo(40, 20, QImage::Format_RGB32);
    logo.fill(Qt::red);
    ASSERT_TRUE(logo.save(QString::fromStdU16String(folder + u"/logo.png")));
    Channel channel;
    channel.image().SetLocalFile(WString(u"logo.png"));
    NewsItem item;
    item.SetTitle(WString(u"Story"));
    item.SetDescription(WString(u"Body"));
    const auto page = BuildStoryPage(channel, item, PageContext{folder});
    ASSERT_TRUE(page && page->find(u"file://" + folder + u"/logo.png") != std::u16string::npos);

    FrameRecorder frame;
    HtmlView view(&frame, 0, nullptr);
    view.resize(200, 100);
    view.SetPage(page, true);
    EXPECT_TRUE(test::HasColour(view.grab().toImage(), Qt::red));
}

// A page with one text box that has the menu, and the clipboard emptied.
class EditMenuTest : public ::testing::Test {
protected:
    EditMenuTest() : box_(new QLineEdit(&page_)) {
        auto* layout = new QVBoxLayout(&page_);
        layout->addWidget(box_);
        menu_ = AttachEditMenus(&page_);
        page_.show();
        QGuiApplication::clipboard()->clear();
    }

    // Opens the menu with the right button and answers its entries.
    QList<QAction*> Entries() {
        QTest::mouseClick(box_, Qt::RightButton, {}, QPoint(4, 4));
        menu_->menu()->close();
        return menu_->menu()->actions();
    }
    // The enabled entries, in menu order.
    QStringList EnabledEntries() {
        QStringList enabled;
        for (QAction* action : Entries()) {
            if (!action->isSeparator() && action->isEnabled()) {
                enabled << action->text();
            }
        }
        return enabled;
    }
    void Choose(const QString& entry) {
        for (QAction* action : Entries()) {
            if (action->text() == entry) {
                action->trigger();
            }
        }
    }

    static QString Clipboard() { return QGuiApplication::clipboard()->text(); }

    QWidget page_;
    QLineEdit* box_;
    EditMenu* menu_;
};

TEST_F(EditMenuTest, EntriesAreEnabledBySelectionClipboardAndText) {
    EXPECT_TRUE(EnabledEntries().isEmpty());
    EXPECT_EQ(menu_->target(), box_);
    QStringList shown;
    for (QAction* action : Entries()) {
        shown << action->text();
    }
    EXPECT_EQ(shown, (QStringList{"Cu&t", "&Copy", "&Paste", "C&lear", "", "&Select All"}));

    box_->setText(QStringLiteral("hello world"));
    EXPECT_EQ(EnabledEntries(), QStringList{"&Select All"});
    QGuiApplication::clipboard()->setText(QStringLiteral("x"));
    EXPECT_EQ(EnabledEntries(), (QStringList{"&Paste", "&Select All"}));
    box_->setSelection(0, 5);
    EXPECT_EQ(EnabledEntries(), (QStringList{"Cu&t", "&Copy", "&Paste", "C&lear", "&Select All"}));

    // A clipboard without text has nothing to paste.
    auto* picture = new QMimeData;
    picture->setImageData(QImage(4, 4, QImage::Format_RGB32));
    QGuiApplication::clipboard()->setMimeData(picture);
    EXPECT_FALSE(EnabledEntries().contains(QStringLiteral("&Paste")));
    EditMenu::Paste(box_);
    EXPECT_EQ(box_->text(), "hello world");
}

TEST_F(EditMenuTest, CutCopyPasteAndClearMoveOnlyTheSelectionAsPlainText) {
    box_->setText(QStringLiteral("hello world"));
    box_->setSelection(6, 5);
    Choose(QStringLiteral("&Copy"));
    EXPECT_EQ(Clipboard(), "world");
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->formats(), QStringList{"text/plain"});
    Choose(QStringLiteral("Cu&t"));
    EXPECT_EQ(box_->text(), "hello ");

    box_->setCursorPosition(0);
    Choose(QStringLiteral("&Paste"));
    EXPECT_EQ(box_->text(), "worldhello ");
    box_->undo();
    EXPECT_EQ(box_->text(), "hello ");

    // Without a selection, Cut, Copy and Clear leave box and clipboard alone.
    QGuiApplication::clipboard()->setText(QStringLiteral("kept"));
    EditMenu::Cut(box_);
    EditMenu::Copy(box_);
    EditMenu::Clear(box_);
    EXPECT_EQ(box_->text(), "hello ");
    EXPECT_EQ(Clipboard(), "kept");

    Choose(QStringLiteral("&Select All"));
    EXPECT_EQ(box_->selectedText(), "hello ");
    Choose(QStringLiteral("C&lear"));
    EXPECT_TRUE(box_->text().isEmpty());
    EXPECT_EQ(Clipboard(), "kept");
}

} // namespace
} // namespace qf::ui
