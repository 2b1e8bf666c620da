#pragma once

#include "parse/XmlDocument.h"

#include <cstdint>

namespace qf {

class Channel;

// The two readers of the RSS family, chosen by ParseFeed from the top-level element. Both keep
// what they read when a document ends early and answer true: a feed with nothing recognisable
// in it is an empty channel, not a failure. Stories take `codePage` unless a `language` says
// otherwise.

// RSS 0.9x and 2.0 under `rss`: only a `channel` as the first element is read. A `language`
// that picks a code page applies to the stories that follow it and names the channel's encoding.
bool ParseRss(Channel& channel, bool takeTitle, XmlNode rootElement, int32_t codePage);

// RSS 1.0 under `rdf:RDF`: the channel's title and date from `channel`, and the `image` and
// `item` elements beside it. The language plays no part here.
bool ParseRdf(Channel& channel, bool takeTitle, XmlNode rootElement, int32_t codePage);

} // namespace qf
