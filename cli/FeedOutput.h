#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

namespace qf {
class Channel;
class NewsItem;
} // namespace qf

namespace qf::cli {

// How channels and stories appear on standard output: as JSON objects (null texts as null,
// dates as RFC 822 text or "" when empty) and as readable lines.

nlohmann::ordered_json StoryJson(const NewsItem& item);
// The channel as a feed has filled it, with every story.
nlohmann::ordered_json FeedJson(const Channel& channel);

// One headline: its number (1 = the first story), a star when unread, the date in the short
// local form and the title.
std::string HeadlineLine(int32_t number, const NewsItem& item);

// The feed's own facts, one per line, followed by its headlines.
std::string FeedSummary(const Channel& channel);

// The JSON document as printed: indented, with a final newline.
std::string JsonText(const nlohmann::ordered_json& document);

} // namespace qf::cli
