#include "model/ChannelListOrder.h"

#include "model/ChannelStore.h"

#include <algorithm>

namespace qf {

namespace {

constexpr int32_t kAllCategories = -1;

} // namespace

std::vector<Channel*> ChannelListOrder(const ChannelStore& store, int32_t categoryFilter,
                                       bool unreadOnly) {
    std::vector<Channel*> rows;
    const auto& categories = store.categories();
    for (std::size_t index = 0; index < categories.size(); ++index) {
        if (categoryFilter != kAllCategories && static_cast<std::size_t>(categoryFilter) != index) {
            continue;
        }
        const auto& channels = categories[index]->channels();
        for (std::size_t position = 0; position < channels.size(); ++position) {
            Channel* channel = channels[position].get();
            if (channel == nullptr || (unreadOnly && channel->newItemCount() == 0)) {
                continue;
            }
            // The list takes a row at the requested index, or at its end when that lies beyond:
            // rows of later categories land among the earlier ones.
            const std::size_t at = std::min(position, rows.size());
            rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(at), channel);
        }
    }
    return rows;
}

std::vector<Channel*> ChannelListOrder(const ChannelStore& store) {
    return ChannelListOrder(store, store.categoryId(), store.newChannels() != 0);
}

} // namespace qf
