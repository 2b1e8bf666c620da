#pragma once

#include <string_view>

namespace qf {

class Channel;
class ChannelStore;

// Operations on the channels' cached feed files in the data folder of `volume`.

// Fills the channel's stories from its cached feed, as opening a channel does.
bool LoadCachedFeed(Channel& channel, std::u16string_view volume);

// Marks every story of the channel read or unread, recounts the unread stories and marks the
// channel modified so the states reach its cached feed; a channel whose stories are not in memory
// is loaded from its cached feed first.
bool MarkAllItems(Channel& channel, bool read, std::u16string_view volume);

// Writes the read state of every modified channel into its cached feed.
bool SaveModifiedChannels(ChannelStore& store);

// Deletes the channel's cached feed and logo; missing files are no error.
bool DeleteChannelFiles(Channel& channel, std::u16string_view volume);

} // namespace qf
