#pragma once

#include <QList>

class QWidget;

namespace qf::ui {

// The main window's place and size, kept in the [Window] section of the settings file. The first
// run starts at a portrait, phone-like size that fits the screen.
void RestoreGeometry(QWidget& window);
// The widths of the side-by-side panes as last left ("Panes" in [Window]); empty when none were
// kept or the kept ones do not make `count` positive widths.
QList<int> StoredPaneSizes(int count);
// Keeps the window's place and size, and the pane widths unless `paneSizes` is empty. False when
// the settings file could not be written.
bool SaveGeometry(const QWidget& window, const QList<int>& paneSizes);

} // namespace qf::ui
