#pragma once

#include <QUrl>

namespace qf::ui {

// The help page shipped with the program, opened at its contents: beside the program in a build
// tree, or in the installed data folder. Empty when neither is there.
QUrl HelpPageUrl();

} // namespace qf::ui
