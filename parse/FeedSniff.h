#pragma once

#include <string_view>

namespace qf {

// The quick tests that a would-be feed must pass before it is parsed. They are plain,
// case-sensitive substring tests, so the words also pass when they only occur in content.

// True when the bytes of a file, read as text in the default character set (which ends at the
// first NUL byte), hold "<?xml " with "?>" somewhere after it, or one of the feed words.
bool LooksLikeFeedFile(std::string_view bytes);

// True when the text holds one of the feed words "rdf:RDF", "rss", "feed", "opml".
bool ContainsFeedRootWord(std::u16string_view text);

} // namespace qf
