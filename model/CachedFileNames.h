#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qf {

// Names of a channel's cached files inside the data folder, derived from the channel's id.

// "Channel<id>.xml": the channel's last downloaded feed.
std::u16string FeedFileName(int32_t channelId);

// "Image<id>", followed by "." and the image address's extension when it has one.
std::u16string ImageFileName(int32_t channelId, std::u16string_view imageUrl);

// The id of the channel whose cached feed or logo a file of the data folder is, by its name as
// the two above give it; nullopt for any other file.
std::optional<int32_t> ChannelIdOfCachedFile(std::u16string_view name);

// The extension of an image address: the text after the last "." (a query after the last "?"
// does not count), when that text is 1 to 4 characters long and holds no "/"; else empty.
std::u16string_view ImageExtension(std::u16string_view imageUrl);

} // namespace qf
