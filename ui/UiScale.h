#pragma once

class QWidget;

namespace qf::ui {

// Sizes of the handheld, whose screens were 240 pixels wide with a system font about 13 pixels
// high, scaled to this screen: a size grows with the font, so the program keeps its proportions
// on a desktop and on a high-density screen (where Qt's logical pixels already cover the device
// pixel ratio). Rules that shape page text or choices (the 220- and 240-pixel widths) use logical
// pixels unscaled.
double HandheldScale(const QWidget* widget);
int Scaled(int handheldPixels, const QWidget* widget);

} // namespace qf::ui
