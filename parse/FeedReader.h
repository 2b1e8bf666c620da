#pragma once

#include "parse/XmlDocument.h"

#include <cstdint>
#include <string>

namespace qf {

class Channel;

// Reads a loaded feed document into the channel: the feed type from the top-level element
// ("rdf:RDF", "rss" or "feed", ignoring case), then the channel's date, logo and stories through
// the reader of that type, appended to the channel's list. With `takeTitle` the feed's own title
// replaces the channel's. Whatever the reader answered, the story and unread counts are set from
// the list. The stories' code page starts from the one the document's text declared. Fails for a
// document without a top-level element or of another kind.
bool ParseFeed(const XmlDocument& document, Channel& channel, bool takeTitle);

// The key that identifies a story element across downloads, by the rule of StoryKey: the text of
// its first `link` (RSS and RDF) or the `href` of its first `link` of type text/html (Atom); for
// an element without one its `guid` (RSS and RDF) or `id` (Atom); failing both its `title`.
// False, with `out` empty, when the element has none of them.
bool ItemKey(XmlNode itemElement, std::u16string& out, int32_t feedType);

} // namespace qf
