#include "NewsFixture.h"
#include "ui/HtmlView.h"
#include "ui/ProgressBar.h"

#include <QAccessible>
#include <QAccessibleTableInterface>
#include <QAccessibleValueInterface>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>

namespace qf::ui::test {
namespace {

// What a screen reader is told about the widgets, read through Qt's accessibility interfaces as
// the desktop's accessibility bridge reads them.
class AccessibilityTest : public NewsFixture {
protected:
    // Offscreen no accessibility bridge runs to have the views tell their interfaces that the
    // rows were refilled, so each reading starts from a fresh interface.
    static QAccessibleInterface* Of(QWidget* widget) {
        if (QAccessibleInterface* old = QAccessible::queryAccessibleInterface(widget)) {
            QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(old));
        }
        return QAccessible::queryAccessibleInterface(widget);
    }
    static QString Name(QWidget* widget) { return Of(widget)->text(QAccessible::Name); }
    // The name and the description of a list's row.
    static QStringList Said(QListView* list, int row) {
        QAccessibleTableInterface* table = Of(list)->tableInterface();
        QAccessibleInterface* cell = table == nullptr ? nullptr : table->cellAt(row, 0);
        if (cell == nullptr) {
            return {};
        }
        return {cell->text(QAccessible::Name), cell->text(QAccessible::Description)};
    }
};

TEST_F(AccessibilityTest, RowsSayTheirCountsDatesAndStateInWordsAndTheViewsBarAndKeysAreNamed) {
    StartWithStories();
    QListView* channels = channelsScreen()->list();
    EXPECT_EQ(Name(channels), "Channels");
    EXPECT_EQ(Said(channels, 0), (QStringList{"News", "2 unread of 4 stories"}));
    EXPECT_EQ(Said(channels, 1), (QStringList{"Failed", "no stories, Failed to parse the channel, "
                                                        "1/5/24 9:30 AM"}));
    Row(0).SetState(kChannelUpdating);
    channelsScreen()->UpdateIcon(&Row(0));
    EXPECT_EQ(Said(channels, 0)[1], "2 unread of 4 stories, updating");
    Row(0).SetState(kChannelIdle);
    channelsScreen()->UpdateIcon(&Row(0));
    EXPECT_EQ(CountsInWords(1, 1), "1 unread of 1 story");
    EXPECT_EQ(CountsInWords(0, 1), "0 unread of 1 story");

    OpenChannel(0);
    QListView* headlines = news().list();
    EXPECT_EQ(Name(headlines), "Headlines");
    EXPECT_EQ(Name(news().banner()), "News");
    const QString date = news().model()->index(0).data(NewsListModel::kDateRole).toString();
    ASSERT_FALSE(date.isEmpty());
    EXPECT_EQ(Said(headlines, 0), (QStringList{"Alpha", date + ", unread"}));
    EXPECT_EQ(Said(headlines, 1)[0], "Bravo");
    EXPECT_FALSE(Said(headlines, 1)[1].contains(QStringLiteral("unread")));
    Command(kCmdBack);
    OpenChannel(1);
    EXPECT_EQ(Said(headlines, 0), (QStringList{"Failed to parse the channel", "1/5/24 9:30 AM"}));
    EXPECT_EQ(Name(app().mainWindow()->softKeys()->menuKey()), "Menu");
    Command(kCmdBack);
    OpenChannel(0);
    OpenStory(0);
    HtmlView* view = storyScreen()->view();
    EXPECT_EQ(Name(view), "Alpha");
    EXPECT_EQ(Name(app().mainWindow()->softKeys()->leftKey()),
              app().mainWindow()->softKeys()->leftKey()->text().remove(QLatin1Char('&')));
    EXPECT_FALSE(Name(app().mainWindow()->softKeys()->leftKey()).isEmpty());
    Command(kCmdNextNews);
    ASSERT_TRUE(WaitFor([this] { return storyScreen()->item() == news().model()->ItemAt(1); }));
    EXPECT_EQ(Name(view), "Bravo");

    ProgressBar* progress = storyScreen()->progress();
    EXPECT_EQ(Name(progress->stopButton()), "Stop refresh");
    progress->SetText(QStringLiteral("downloading channel file"));
    progress->SetRange(0, 4);
    progress->SetPosition(1);
    QAccessibleInterface* bar = Of(progress->bar());
    EXPECT_EQ(bar->text(QAccessible::Name), "downloading channel file");
    EXPECT_EQ(bar->text(QAccessible::Description), "25%");
    ASSERT_NE(bar->valueInterface(), nullptr);
    EXPECT_EQ(bar->valueInterface()->currentValue().toInt(), 1);
    EXPECT_EQ(bar->valueInterface()->maximumValue().toInt(), 4);
}

} // namespace
} // namespace qf::ui::test
