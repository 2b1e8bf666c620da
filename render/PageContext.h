#pragma once

#include <string>
#include <string_view>

namespace qf {

class ChannelImage;

// What the page builders need to know beyond the feed records. The caller fills it from the
// settings and the data folder, so the builders stay free of both.
struct PageContext {
    // The data folder that holds the cached logos, '/'-separated, without a trailing separator.
    std::u16string dataFolder;
};

// Full path of a channel's cached logo: the data folder, "/" and the image's local file name.
// Empty when the image has no file name yet.
std::u16string LogoPath(const ChannelImage& image, const PageContext& context);

// True when `path` is not empty and something by that name is on disk. A logo that is named
// but not downloaded yet is common and simply not shown.
bool LogoOnDisk(std::u16string_view path);

} // namespace qf
