#pragma once

#include "parse/XmlDocument.h"

namespace qf {

class Channel;

// The Atom reader, chosen by ParseFeed for a top-level `feed`. Stories take their link only from
// a `link` of type text/html, and their text from `content`; the feed's `icon` is its logo.
// Answers true with whatever it read.
bool ParseAtom(XmlDocument& document, Channel& channel, bool takeTitle, XmlNode rootElement);

} // namespace qf
