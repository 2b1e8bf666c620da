#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace qf {

// Program paths are UTF-16 texts separated by "/"; the file system speaks UTF-8 bytes.

// Turns a program path into a file-system path, and back.
std::filesystem::path ToFsPath(std::u16string_view path);
std::u16string FromFsPath(const std::filesystem::path& path);

// `folder` + "/" + `name`, without doubling a separator that ends the folder.
std::u16string JoinPath(std::u16string_view folder, std::u16string_view name);

} // namespace qf
