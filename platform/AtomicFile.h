#pragma once

#include <filesystem>
#include <string_view>

namespace qf {

// Writes `bytes` to a temporary file in the same folder as `path`, flushes it to disk and renames
// it over `path`, so that a crash at any moment leaves either the old file or the new one. The
// folder must exist. A new file is readable by its owner only; one that exists keeps its
// permissions unless `ownerOnly` asks for the owner-only ones. Answers false (and leaves `path`
// untouched) on any failure.
bool WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes,
                         bool ownerOnly = false);

} // namespace qf
