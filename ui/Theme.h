#pragma once

#include <QColor>
#include <QPalette>
#include <QString>
#include <cstdint>

namespace qf::ui {

// The two sets of colours the program draws in.
enum class Appearance { kLight, kDark };

// The least contrast any text of the program has against its background.
inline constexpr double kMinimumTextContrast = 4.5;

// The appearance the settings' Theme value asks for: light or dark as chosen; otherwise as the
// desktop's own colours were when the program started, dark when its window colour is dark.
Appearance AppearanceFor(int32_t theme);

// The program's colours for an appearance; every text colour in it reads at least 4.5:1 on the
// background it is drawn on, selected rows and links included.
QPalette ThemePalette(Appearance appearance);

// Gives the whole application the colours of the Theme value. Every open window, dialog and
// page repaints in them at once.
void ApplyTheme(int32_t theme);

// The contrast ratio of two colours as the accessibility guidelines define it: 1 for the same
// colour, 21 for black on white.
double ContrastRatio(const QColor& first, const QColor& second);

// `wanted`, moved towards `text` just as far as it takes to read 4.5:1 on `background`; `text`
// itself must read so on it.
QColor ReadableOn(const QColor& wanted, const QColor& background, const QColor& text);

// Black or white, whichever reads better on `background`; either reads at least 4.58:1 on the
// one it is chosen for.
QColor TextOn(const QColor& background);

// The quieter text of a list row (dates, times), on a selected row or not.
QColor SecondaryText(const QPalette& palette, bool selected);
// The error text of a list row.
QColor ErrorText(const QPalette& palette, bool selected);

// A generated page with its own colours made those of `palette`: the white page background
// becomes the palette's, and every font colour is made readable on it. The page's text is
// otherwise left as it is.
QString ThemedPage(const QString& html, const QPalette& palette);

} // namespace qf::ui
