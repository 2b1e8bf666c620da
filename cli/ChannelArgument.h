#pragma once

#include <cstdint>

namespace qf {
class Category;
class Channel;
class ChannelStore;
} // namespace qf

namespace qf::cli {

class Session;

// The channel a command names by its id, with the category that holds it.
struct NamedChannel {
    Category* category = nullptr;
    Channel* channel = nullptr;
};

// The first channel with `id`, in store order; says so on standard error when there is none.
NamedChannel FindChannelById(ChannelStore& store, int32_t id);

// Reads the channel's stories from its cached feed; says why on standard error when it cannot.
bool LoadStories(Session& session, Channel& channel);

} // namespace qf::cli
