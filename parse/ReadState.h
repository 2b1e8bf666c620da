#pragma once

#include "model/Channel.h"

namespace qf {

class XmlDocument;

// How a story's read state outlives the program run and a refresh. A story is known by its key
// (its link, else its guid or Atom id, else its title; see StoryKey), compared ignoring case. A
// story without any of them cannot keep its state. Stories that share a key are matched in turn:
// the n-th with the key on one side goes with the n-th on the other.

// Stamps qf_wasRead "yes" or "no" on every story element ("item", or "entry" in Atom) of the
// channel's loaded cached feed: the n-th element with a key takes the read flag of the channel's
// n-th story with that key. Elements without a key or without such a story are left as they are.
// Fails for a document that is not loaded or a channel of no known feed type.
bool WriteReadStates(XmlDocument& document, const Channel& channel);

// After a refresh: the n-th new story with a key and a date (as the short local form shows it, to
// the minute) takes the read flag of the n-th old story with the same key and date. A story whose
// date changed comes back unread. When any flag was carried the counts are set from the list
// again; answers whether any was.
bool CarryReadStates(const Channel::ItemList& oldItems, Channel& channel);

// After a refresh replaced the stories `before` with `now`: the story of `now` that stands for
// `story`, one of `before`, by the same rule as the carried read flags (the same key and date, in
// the same turn among stories that share them); nullptr when the refresh left none.
NewsItem* SameStory(const Channel::ItemList& before, const NewsItem& story,
                    const Channel::ItemList& now);

} // namespace qf
