#include "render/PageContext.h"

#include "model/ChannelImage.h"
#include "platform/FsPath.h"

#include <filesystem>
#include <system_error>

namespace qf {

std::u16string LogoPath(const ChannelImage& image, const PageContext& context) {
    if (image.localFile().empty()) {
        return {};
    }
    std::u16string path = context.dataFolder;
    path += u'/';
    path += image.localFile().view();
    return path;
}

bool LogoOnDisk(std::u16string_view path) {
    if (path.empty()) {
        return false;
    }
    std::error_code error;
    return std::filesystem::exists(ToFsPath(path), error);
}

} // namespace qf
