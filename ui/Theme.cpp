#include "ui/Theme.h"

#include "model/ViewerSettings.h"

#include <QApplication>
#include <QRegularExpression>
#include <cmath>
#include <functional>

namespace qf::ui {

namespace {

// A colour is moved towards the text colour in this many steps until it reads.
constexpr int kBlendSteps = 20;
// Secondary text starts halfway between the text and its background.
constexpr double kSecondaryShare = 0.5;
const QColor kErrorRed(255, 0, 0);

struct RoleColour {
    QPalette::ColorRole role;
    QColor colour;
};

const std::initializer_list<RoleColour> kLightColours = {
    {QPalette::Window, QColor(0xef, 0xef, 0xef)},
    {QPalette::WindowText, QColor(0x00, 0x00, 0x00)},
    {QPalette::Base, QColor(0xff, 0xff, 0xff)},
    {QPalette::AlternateBase, QColor(0xf5, 0xf5, 0xf5)},
    {QPalette::Text, QColor(0x00, 0x00, 0x00)},
    {QPalette::Button, QColor(0xe4, 0xe4, 0xe4)},
    {QPalette::ButtonText, QColor(0x00, 0x00, 0x00)},
    {QPalette::BrightText, QColor(0xff, 0xff, 0xff)},
    {QPalette::Light, QColor(0xff, 0xff, 0xff)},
    {QPalette::Midlight, QColor(0xf2, 0xf2, 0xf2)},
    {QPalette::Mid, QColor(0xb8, 0xb8, 0xb8)},
    {QPalette::Dark, QColor(0x9f, 0x9f, 0x9f)},
    {QPalette::Shadow, QColor(0x76, 0x76, 0x76)},
    {QPalette::Highlight, QColor(0x1d, 0x5f, 0xa6)},
    {QPalette::HighlightedText, QColor(0xff, 0xff, 0xff)},
    {QPalette::Link, QColor(0x06, 0x45, 0xad)},
    {QPalette::LinkVisited, QColor(0x6b, 0x2d, 0x9a)},
    {QPalette::ToolTipBase, QColor(0xff, 0xff, 0xdc)},
    {QPalette::ToolTipText, QColor(0x00, 0x00, 0x00)},
    {QPalette::PlaceholderText, QColor(0x6b, 0x6b, 0x6b)},
};

const std::initializer_list<RoleColour> kDarkColours = {
    {QPalette::Window, QColor(0x2d, 0x2d, 0x2d)},
    {QPalette::WindowText, QColor(0xe8, 0xe8, 0xe8)},
    {QPalette::Base, QColor(0x1e, 0x1e, 0x1e)},
    {QPalette::AlternateBase, QColor(0x26, 0x26, 0x26)},
    {QPalette::Text, QColor(0xe8, 0xe8, 0xe8)},
    {QPalette::Button, QColor(0x36, 0x36, 0x36)},
    {QPalette::ButtonText, QColor(0xe8, 0xe8, 0xe8)},
    {QPalette::BrightText, QColor(0xff, 0xff, 0xff)},
    {QPalette::Light, QColor(0x50, 0x50, 0x50)},
    {QPalette::Midlight, QColor(0x42, 0x42, 0x42)},
    {QPalette::Mid, QColor(0x2a, 0x2a, 0x2a)},
    {QPalette::Dark, QColor(0x1a, 0x1a, 0x1a)},
    {QPalette::Shadow, QColor(0x0d, 0x0d, 0x0d)},
    {QPalette::Highlight, QColor(0x2f, 0x65, 0xad)},
    {QPalette::HighlightedText, QColor(0xff, 0xff, 0xff)},
    {QPalette::Link, QColor(0x8a, 0xb4, 0xf8)},
    {QPalette::LinkVisited, QColor(0xc8, 0xa2, 0xf8)},
    {QPalette::ToolTipBase, QColor(0x3a, 0x3a, 0x3a)},
    {QPalette::ToolTipText, QColor(0xe8, 0xe8, 0xe8)},
    {QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0x9a)},
};

// Greyed-out text of disabled controls, which need not be read as easily.
const QColor kLightDisabledText(0x8a, 0x8a, 0x8a);
const QColor kDarkDisabledText(0x7a, 0x7a, 0x7a);

// Judged once, before the program gives the application colours of its own, after which the
// application's palette no longer tells what the desktop's is.
bool DesktopIsDark() {
    static const bool dark = QGuiApplication::palette().color(QPalette::Window).lightnessF() < 0.5;
    return dark;
}

double Linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& colour) {
    const QColor rgb = colour.toRgb();
    return 0.2126 * Linear(rgb.redF()) + 0.7152 * Linear(rgb.greenF()) +
           0.0722 * Linear(rgb.blueF());
}

QColor Mixed(const QColor& from, const QColor& to, double share) {
    const auto channel = [share](int a, int b) {
        return static_cast<int>(std::lround(a + (b - a) * share));
    };
    return {channel(from.red(), to.red()), channel(from.green(), to.green()),
            channel(from.blue(), to.blue())};
}

// Replaces every match of `pattern` in `text` with what `replacement` makes of it.
QString ReplaceMatches(const QString& text, const QRegularExpression& pattern,
                       const std::function<QString(const QRegularExpressionMatch&)>& replacement) {
    QString result;
    qsizetype copied = 0;
    for (auto matches = pattern.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        result += QStringView(text).mid(copied, match.capturedStart() - copied);
        result += replacement(match);
        copied = match.capturedEnd();
    }
    result += QStringView(text).mid(copied);
    return result;
}

} // namespace

Appearance AppearanceFor(int32_t theme) {
    switch (theme) {
    case ViewerSettings::kLightTheme:
        return Appearance::kLight;
    case ViewerSettings::kDarkTheme:
        return Appearance::kDark;
    default:
        return DesktopIsDark() ? Appearance::kDark : Appearance::kLight;
    }
}

QPalette ThemePalette(Appearance appearance) {
    const bool dark = appearance == Appearance::kDark;
    QPalette palette;
    for (const RoleColour& entry : dark ? kDarkColours : kLightColours) {
        palette.setColor(entry.role, entry.colour);
    }
    const QColor disabled = dark ? kDarkDisabledText : kLightDisabledText;
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, disabled);
    }
    return palette;
}

void ApplyTheme(int32_t theme) {
    DesktopIsDark();
    QApplication::setPalette(ThemePalette(AppearanceFor(theme)));
}

double ContrastRatio(const QColor& first, const QColor& second) {
    const double a = Luminance(first);
    const double b = Luminance(second);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor ReadableOn(const QColor& wanted, const QColor& background, const QColor& text) {
    for (int step = 0; step < kBlendSteps; ++step) {
        const QColor colour = Mixed(wanted, text, static_cast<double>(step) / kBlendSteps);
        if (ContrastRatio(colour, background) >= kMinimumTextContrast) {
            return colour;
        }
    }
    return text;
}

QColor TextOn(const QColor& background) {
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    return ContrastRatio(black, background) >= ContrastRatio(white, background) ? black : white;
}

QColor SecondaryText(const QPalette& palette, bool selected) {
    const QColor text = selected ? palette.highlightedText().color() : palette.text().color();
    const QColor background = selected ? palette.highlight().color() : palette.base().color();
    return ReadableOn(Mixed(text, background, kSecondaryShare), background, text);
}

QColor ErrorText(const QPalette& palette, bool selected) {
    const QColor text = selected ? palette.highlightedText().color() : palette.text().color();
    const QColor background = selected ? palette.highlight().color() : palette.base().color();
    return ReadableOn(kErrorRed, background, text);
}

QString ThemedPage(const QString& html, const QPalette& palette) {
    static const QRegularExpression pageBackground(
        QStringLiteral(R"((\bbgcolor\s*=\s*["']?)#ffffff\b)"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression fontColour(
        QStringLiteral(R"((\bcolor\s*=\s*["']?)(#[0-9a-f]{6})\b)"),
        QRegularExpression::CaseInsensitiveOption);
    const QColor base = palette.base().color();
    const QColor text = palette.text().color();
    const QString themed =
        ReplaceMatches(html, pageBackground, [&base](const QRegularExpressionMatch& match) {
            return match.captured(1) + base.name();
        });
    return ReplaceMatches(themed, fontColour, [&](const QRegularExpressionMatch& match) {
        return match.captured(1) + ReadableOn(QColor(match.captured(2)), base, text).name();
    });
}

} // namespace qf::ui
