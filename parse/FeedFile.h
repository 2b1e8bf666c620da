#pragma once

#include <string_view>

namespace qf {

class Channel;

// Reads a freshly downloaded feed file into the channel as a refresh does: the file passes the
// quick test and is parsed, the encoding its XML declaration names becomes the channel's
// encoding and code page, and ParseFeed reads the rest (so an RSS `language` still overrides the
// encoding name). False when the file cannot be loaded or is no feed.
bool LoadFeedFile(std::u16string_view path, Channel& channel, bool takeTitle);

} // namespace qf
