#pragma once

#include "model/Channel.h"
#include "parse/FeedReader.h"
#include "parse/XmlDocument.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qf::test {

// A feed text parsed by ParseFeed into a fresh channel with the given id; `parsed` holds what
// ParseFeed answered (false also when the text is not well-formed XML).
struct ParsedFeed {
    explicit ParsedFeed(std::u16string_view text, bool takeTitle = true, int32_t id = 0) {
        channel.SetId(id);
        parsed = document.LoadText(text, false) && ParseFeed(document, channel, takeTitle);
    }

    const NewsItem& item(int32_t index) const { return *channel.items().at(index); }

    XmlDocument document;
    Channel channel;
    bool parsed = false;
};

} // namespace qf::test
