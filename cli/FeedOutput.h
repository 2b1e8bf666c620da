#pragma once

#include "cli/Json.h"

#include <cstdint>
#include <string>

namespace qf {
class Channel;
class NewsItem;
} // namespace qf

namespace qf::cli {

// How a feed and its stories appear on standard output, as JSON and as readable lines.

Json StoryJson(const NewsItem& item);
// The channel as a feed has filled it, with every story.
Json FeedJson(const Channel& channel);

// One headline: its number (1 = the first story, as `mark` takes it), a star when unread, the
// date in the short local form and the title.
std::string HeadlineLine(int32_t number, const NewsItem& item);

// The feed's own facts, one per line, followed by its headlines.
void PrintFeedSummary(const Channel& channel);

} // namespace qf::cli
