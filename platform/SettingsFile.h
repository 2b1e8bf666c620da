#pragma once

#include "platform/IniFile.h"

#include <functional>
#include <optional>

namespace qf {

// The one settings file that the core and the GUI share (see UserFolders.h for where it lives).

// The file as it stands: an empty file when there is none yet; nullopt when no home folder is
// known, or when the file exists but cannot be read (a save would then destroy what it holds).
std::optional<IniFile> ReadSettingsFile();

// Reads the file, lets `change` set its values and writes it back whole, creating its folder.
// Every line that `change` leaves alone stays as it was. False, and nothing written, when the
// file cannot be read; false when it cannot be written.
// `ownerOnly` makes the file readable by its owner only from then on, for values that open an
// account; otherwise the file keeps the permissions it has.
bool UpdateSettingsFile(const std::function<void(IniFile&)>& change, bool ownerOnly = false);

} // namespace qf
