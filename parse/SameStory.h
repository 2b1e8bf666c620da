#pragma once

#include "model/Channel.h"

namespace qf {

// After a refresh replaced a channel's stories: the story of `now` that stands for `story`, one of
// the stories of `before`. It is the story with the same read-state key, and among stories that
// share a key the one in the same place; nullptr when the refresh left no such story.
NewsItem* SameStory(const Channel::ItemList& before, const NewsItem& story,
                    const Channel::ItemList& now);

} // namespace qf
