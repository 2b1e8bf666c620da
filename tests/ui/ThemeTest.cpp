#include "ui/Theme.h"

#include "NewsFixture.h"
#include "model/ViewerSettings.h"
#include "ui/HtmlView.h"
#include "ui/OptionsDialog.h"
#include "ui/ProgressBar.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QProgressBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>

namespace qf::ui::test {
namespace {

QColor PageBackground(const HtmlView& view) {
    return view.document()->rootFrame()->frameFormat().background().color();
}

// The lowest contrast of any text the view shows against its page's background.
double LeastTextContrast(const HtmlView& view) {
    double least = 21;
    for (QTextBlock block = view.document()->begin(); block.isValid(); block = block.next()) {
        for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
            const QTextFragment fragment = piece.fragment();
            if (fragment.text().trimmed().isEmpty()) {
                continue;
            }
            const QBrush own = fragment.charFormat().foreground();
            const QColor colour =
                own.style() != Qt::NoBrush ? own.color() : view.palette().text().color();
            least = std::min(least, ContrastRatio(colour, PageBackground(view)));
        }
    }
    return least;
}

// The story "Alpha" shown, with its channel's banner and the welcome page, behind the channels
// screen, where Options is chosen.
class ThemeTest : public NewsFixture {
protected:
    void SetUp() override {
        StartWithStories();
        OpenChannel(0);
        OpenStory(0);
        welcomeScreen()->ShowPage();
        Command(kCmdBack);
        Command(kCmdBack);
        ASSERT_EQ(ShownScreen(), kChannelsScreen);
    }
    void ChooseTheme(int entry) {
        RunDialog<OptionsDialog>(kCmdOptions, [entry](OptionsDialog& options) {
            options.theme()->setCurrentIndex(entry);
        });
        // The new colours reach the open windows with the next turn of the event loop.
        QCoreApplication::processEvents();
    }
};

TEST_F(ThemeTest, OptionsRecolourEveryScreenAtOnceAndEveryTextReadsInBothThemes) {
    // The offscreen desktop is light.
    EXPECT_EQ(news().list()->palette().base().color(),
              ThemePalette(Appearance::kLight).base().color());
    for (const auto& [entry, appearance] :
         {std::pair{ViewerSettings::kDarkTheme, Appearance::kDark},
          std::pair{ViewerSettings::kLightTheme, Appearance::kLight}}) {
        ChooseTheme(entry);
        const QPalette wanted = ThemePalette(appearance);
        EXPECT_EQ(news().list()->palette().base().color(), wanted.base().color());
        EXPECT_EQ(channelsScreen()->list()->palette().highlight().color(),
                  wanted.highlight().color());
        EXPECT_EQ(storyScreen()->progress()->bar()->palette().highlight().color(),
                  wanted.highlight().color());
        for (HtmlView* view : {storyScreen()->view(), news().banner(), welcomeScreen()->view()}) {
            EXPECT_EQ(PageBackground(*view), wanted.base().color())
                << view->objectName().toStdString();
            EXPECT_GE(LeastTextContrast(*view), kMinimumTextContrast)
                << view->toPlainText().toStdString();
        }
        EXPECT_TRUE(storyScreen()->view()->toPlainText().contains(QStringLiteral("Published")));

        // Each text colour against the background it is drawn on.
        const QPalette& rows = news().list()->palette();
        const QPalette& keys = app().mainWindow()->softKeys()->palette();
        const QPalette& window = app().mainWindow()->palette();
        const std::pair<QColor, QColor> pairs[] = {
            {rows.text().color(), rows.base().color()},
            {SecondaryText(rows, false), rows.base().color()},
            {ErrorText(rows, false), rows.base().color()},
            {rows.highlightedText().color(), rows.highlight().color()},
            {SecondaryText(rows, true), rows.highlight().color()},
            {ErrorText(rows, true), rows.highlight().color()},
            {keys.buttonText().color(), keys.button().color()},
            {window.windowText().color(), window.window().color()},
            {window.link().color(), window.base().color()}};
        for (const auto& [text, background] : pairs) {
            EXPECT_GE(ContrastRatio(text, background), kMinimumTextContrast)
                << text.name().toStdString() << " on " << background.name().toStdString();
        }
    }
}

} // namespace
} // namespace qf::ui::test
