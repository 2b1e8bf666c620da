#pragma once

#include "parse/XmlDocument.h"

#include <cstdint>

namespace qf {

class Channel;

// The Atom reader, chosen by ParseFeed for a top-level `feed`. Stories take their link only from
// a `link` of type text/html, and their text from `content`; the feed's `icon` is its logo.
// Every story takes `codePage`. Answers true with whatever it read.
bool ParseAtom(Channel& channel, bool takeTitle, XmlNode rootElement, int32_t codePage);

} // namespace qf
