#pragma once

#include "render/PageContext.h"

#include <optional>
#include <string>

namespace qf {

class Channel;
class NewsItem;

// The page the story screen shows: the channel's banner (its logo when the file is on disk,
// otherwise its title), the story's title, its body exactly as the feed gave it, and the date
// it was published in the short local form. Nothing is returned for a story without a body.
// Inserted texts are not escaped: the body is HTML, and the view that shows the page runs no
// scripts and fetches nothing by itself.
std::optional<std::u16string> BuildStoryPage(const Channel& channel, const NewsItem& item,
                                             const PageContext& context);

} // namespace qf
