#include "platform/FsPath.h"

#include "platform/Text.h"

namespace qf {

std::filesystem::path ToFsPath(std::u16string_view path) {
    return std::filesystem::path(Utf16ToUtf8(path));
}

std::u16string FromFsPath(const std::filesystem::path& path) {
    return Utf8ToUtf16(path.string());
}

std::u16string JoinPath(std::u16string_view folder, std::u16string_view name) {
    std::u16string path(folder);
    if (!path.ends_with(u'/')) {
        path += u'/';
    }
    path += name;
    return path;
}

} // namespace qf
