#include "ui/EditMenu.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <gtest/gtest.h>

namespace qf::ui::test {
namespace {

// A page with one text box that has the menu, and the clipboard emptied.
class EditMenuTest : public ::testing::Test {
protected:
    EditMenuTest() : box_(new QLineEdit(&page_)) {
        auto* layout = new QVBoxLayout(&page_);
        layout->addWidget(box_);
        menu_ = EditMenu::AttachToPage(&page_);
        page_.show();
        QGuiApplication::clipboard()->clear();
    }

    // Opens the menu with the right button and answers which entries are enabled, in menu order.
    QStringList EnabledEntries() {
        QTest::mouseClick(box_, Qt::RightButton, {}, QPoint(4, 4));
        QStringList enabled;
        for (QAction* action : menu_->menu()->actions()) {
            if (!action->isSeparator() && action->isEnabled()) {
                enabled << action->text();
            }
        }
        menu_->menu()->close();
        return enabled;
    }

    void Choose(const QString& entry) {
        QTest::mouseClick(box_, Qt::RightButton, {}, QPoint(4, 4));
        for (QAction* action : menu_->menu()->actions()) {
            if (action->text() == entry) {
                action->trigger();
            }
        }
        menu_->menu()->close();
    }

    static QString Clipboard() { return QGuiApplication::clipboard()->text(); }

    QWidget page_;
    QLineEdit* box_;
    EditMenu* menu_;
};

TEST_F(EditMenuTest, EntriesAreEnabledBySelectionClipboardAndText) {
    EXPECT_TRUE(EnabledEntries().isEmpty());
    EXPECT_EQ(menu_->target(), box_);
    const QStringList texts{"Cu&t", "&Copy", "&Paste", "C&lear", "", "&Select All"};
    QStringList shown;
    for (QAction* action : menu_->menu()->actions()) {
        shown << action->text();
    }
    EXPECT_EQ(shown, texts);

    box_->setText(QStringLiteral("hello world"));
    EXPECT_EQ(EnabledEntries(), QStringList{"&Select All"});
    QGuiApplication::clipboard()->setText(QStringLiteral("x"));
    EXPECT_EQ(EnabledEntries(), (QStringList{"&Paste", "&Select All"}));
    box_->setSelection(0, 5);
    EXPECT_EQ(EnabledEntries(), (QStringList{"Cu&t", "&Copy", "&Paste", "C&lear", "&Select All"}));
}

TEST_F(EditMenuTest, CutCopyPasteAndClearMoveOnlyTheSelectionAsPlainText) {
    box_->setText(QStringLiteral("hello world"));
    box_->setSelection(6, 5);
    Choose(QStringLiteral("&Copy"));
    EXPECT_EQ(Clipboard(), QStringLiteral("world"));
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->formats(), QStringList{"text/plain"});
    Choose(QStringLiteral("Cu&t"));
    EXPECT_EQ(box_->text(), QStringLiteral("hello "));

    box_->setCursorPosition(0);
    Choose(QStringLiteral("&Paste"));
    EXPECT_EQ(box_->text(), QStringLiteral("worldhello "));
    box_->undo();
    EXPECT_EQ(box_->text(), QStringLiteral("hello "));

    // Without a selection, Cut, Copy and Clear leave box and clipboard alone.
    QGuiApplication::clipboard()->setText(QStringLiteral("kept"));
    EditMenu::Cut(box_);
    EditMenu::Copy(box_);
    EditMenu::Clear(box_);
    EXPECT_EQ(box_->text(), QStringLiteral("hello "));
    EXPECT_EQ(Clipboard(), QStringLiteral("kept"));

    Choose(QStringLiteral("&Select All"));
    EXPECT_EQ(box_->selectedText(), QStringLiteral("hello "));
    Choose(QStringLiteral("C&lear"));
    EXPECT_TRUE(box_->text().isEmpty());
    EXPECT_EQ(Clipboard(), QStringLiteral("kept"));
}

TEST_F(EditMenuTest, PasteIgnoresAClipboardWithoutText) {
    auto* picture = new QMimeData;
    picture->setImageData(QImage(4, 4, QImage::Format_RGB32));
    QGuiApplication::clipboard()->setMimeData(picture);
    box_->setText(QStringLiteral("abc"));
    EXPECT_FALSE(EnabledEntries().contains(QStringLiteral("&Paste")));
    EditMenu::Paste(box_);
    EXPECT_EQ(box_->text(), QStringLiteral("abc"));
}

TEST_F(EditMenuTest, HoldingThePressOpensTheMenu) {
    box_->setText(QStringLiteral("abc"));
    QTest::mousePress(box_, Qt::LeftButton, {}, QPoint(4, 4));
    EXPECT_TRUE(QTest::qWaitFor([this] { return menu_->menu()->isVisible(); }, 5000));
    EXPECT_EQ(menu_->target(), box_);
    menu_->menu()->close();
    QTest::mouseRelease(box_, Qt::LeftButton, {}, QPoint(4, 4));
}

} // namespace
} // namespace qf::ui::test
