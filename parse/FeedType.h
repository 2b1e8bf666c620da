#pragma once

#include <cstdint>
#include <string_view>

namespace qf {

// Kind of feed, by its top-level element.
enum FeedType : int32_t {
    kFeedUnknown = 0,
    kFeedRdf = 1,
    kFeedRss = 2,
    kFeedAtom = 3,
};

// "rdf:RDF" 1, "rss" 2, "feed" 3, compared ignoring case; anything else 0.
int32_t DetectFeedType(std::u16string_view elementName);

} // namespace qf
