#pragma once

#include <string_view>

namespace qf {

class Channel;
class ChannelStore;

// Operations on the channels' cached feed files in the data folder of `volume`. A channel's
// cached feed is named after its id the first time one of them needs it.

// Reads the channel's stories from its cached feed, as opening a channel does; the stories in
// memory are replaced, the channel's title is kept. False when the file is missing or no feed.
bool LoadCachedFeed(Channel& channel, std::u16string_view volume);

// Marks every story of the channel read or unread, recounts the unread stories and marks the
// channel modified so the states reach its cached feed; a channel whose stories are not in memory
// is loaded from its cached feed first. False when there are no stories to mark.
bool MarkAllItems(Channel& channel, bool read, std::u16string_view volume);

// Writes the read state of every modified channel into its cached feed, in place and atomically,
// and clears the channel's modified flag. Cached feeds that are missing or no longer parse are
// passed over. False when a file could not be written.
bool SaveModifiedChannels(ChannelStore& store);

// Deletes the channel's cached feed and logo; missing files are no error. The logo's name comes
// from the cached feed when the channel does not know its image address.
bool DeleteChannelFiles(Channel& channel, std::u16string_view volume);

} // namespace qf
