#pragma once

#include "model/Channel.h"

namespace qf {

class XmlDocument;

// How a story's read state outlives the program run and a refresh. A story is known by its link,
// compared ignoring case; a story without a link cannot keep its state.

// Stamps qf_wasRead "yes" or "no" on every story element ("item", or "entry" in Atom) of the
// channel's loaded cached feed, from the read flag of the channel's first story with the
// element's key. Elements without a key or without a matching story are left as they are.
// Fails for a document that is not loaded or a channel of no known feed type.
bool WriteReadStates(XmlDocument& document, const Channel& channel);

// After a refresh: gives each new story the read flag of the old story with the same link and
// the same date as the short local form shows it (to the minute). A story whose date changed
// comes back unread. When any flag was carried the counts are set from the list again; answers
// whether any was.
bool CarryReadStates(const Channel::ItemList& oldItems, Channel& channel);

} // namespace qf
