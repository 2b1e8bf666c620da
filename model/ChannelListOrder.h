#pragma once

#include <cstdint>
#include <vector>

namespace qf {

class Channel;
class ChannelStore;

// The channels in the order of the channels screen's rows: the categories in store order (only
// the one at `categoryFilter` unless it is -1), each with its channels in their order (only those
// with unread stories when `unreadOnly`). A refresh of all channels visits them in this order, so
// the command line and the screen agree.
std::vector<Channel*> ChannelListOrder(const ChannelStore& store, int32_t categoryFilter,
                                       bool unreadOnly);

// The order under the store's own filters: the category shown (`categoryID`) and the unread-only
// switch of the channel list (`newChannels`).
std::vector<Channel*> ChannelListOrder(const ChannelStore& store);

} // namespace qf
