#pragma once

namespace qf::ui {

// The whole run of the GUI: a second start brings the first to the front and ends; otherwise
// the data is locked for the run, the frame starts, the event loop runs, and the settings are
// saved after it. The program takes no arguments of its own (Qt's own options still apply).
int RunQuillfeed(int argc, char** argv);

} // namespace qf::ui
