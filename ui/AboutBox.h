#pragma once

class QWidget;

namespace qf::ui {

// The About box: the program's name and version, modal over `parent`.
void ShowAboutBox(QWidget* parent);

} // namespace qf::ui
