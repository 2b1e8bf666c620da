#include "parse/FeedType.h"

#include "platform/Text.h"

namespace qf {

int32_t DetectFeedType(std::u16string_view elementName) {
    if (EqualsIgnoreCase(elementName, u"rdf:RDF")) {
        return kFeedRdf;
    }
    if (EqualsIgnoreCase(elementName, u"rss")) {
        return kFeedRss;
    }
    if (EqualsIgnoreCase(elementName, u"feed")) {
        return kFeedAtom;
    }
    return kFeedUnknown;
}

} // namespace qf
