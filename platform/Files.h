#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qf {

// Whole-file operations on program paths (see FsPath.h). Failures are answered as false or as no
// text; nothing here is shown to the user.

// An empty path does not exist.
bool FileExists(std::u16string_view path);
// The whole file as bytes; nullopt when it is not a regular file that can be read. A FIFO or
// device is refused without waiting for a writer.
std::optional<std::string> ReadFileBytes(std::u16string_view path);
// The whole file converted from the default code page, up to its first NUL. A file that cannot
// be read, and an empty one, give no text.
std::optional<std::u16string> ReadFileAsText(std::u16string_view path);
bool DeleteFile(std::u16string_view path);
// Copies a regular file over `destination`, which is replaced whole or not at all.
bool CopyFile(std::u16string_view source, std::u16string_view destination);

} // namespace qf
