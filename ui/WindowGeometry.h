#pragma once

class QWidget;

namespace qf::ui {

// The main window's place and size, kept in the [Window] section of the settings file. The first
// run starts at a portrait, phone-like size that fits the screen.
void RestoreGeometry(QWidget& window);
// False when the settings file could not be written.
bool SaveGeometry(const QWidget& window);

} // namespace qf::ui
