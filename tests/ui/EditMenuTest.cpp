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
