#pragma once

namespace qf::ui {

// Registers the pictures compiled into the program. The screens live in a static library, whose
// resources the linker would otherwise leave out; call once before any screen is made.
void InitResources();

} // namespace qf::ui
