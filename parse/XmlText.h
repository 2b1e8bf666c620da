#pragma once

#include <string>
#include <string_view>

namespace qf {

// Appends UTF-16 text as UTF-8 that an XML 1.0 file can carry: characters XML cannot hold at all
// (control characters other than tab and line breaks, U+FFFE, U+FFFF) and unpaired surrogates
// become U+FFFD, so that a saved value never makes its file unreadable.
void AppendXmlUtf8(std::string& out, std::u16string_view text);

} // namespace qf
