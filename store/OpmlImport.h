#pragma once

#include <string>
#include <string_view>
#include <variant>

namespace qf {

class ChannelStore;

// The channel directory the program carries, offered when the user picks channels from a list.
struct BuiltInDirectory {};
// Where channels are imported from: the built-in directory or an OPML file.
using OpmlSource = std::variant<BuiltInDirectory, std::u16string>;

// Reads the categories and channels of an OPML source into `target` (a store of its own, from
// which the caller picks what to subscribe to), through the channel store loader: groups nested
// in a category are flattened into it, channels outside any category go into "Default". Nothing
// is compared against existing subscriptions. Fails on a missing or empty file and on a document
// that does not parse or whose top-level element is not `opml`.
bool ImportOpml(const OpmlSource& source, ChannelStore& target);

// The built-in directory as compiled into the program: plain ASCII OPML.
std::string_view ChannelDirectoryText();

} // namespace qf
