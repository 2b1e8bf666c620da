#include "model/ChannelListOrder.h"

#include "model/ChannelStore.h"

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
        for (const auto& channel : categories[index]->channels()) {
            if (channel != nullptr && (!unreadOnly || channel->newItemCount() != 0)) {
                rows.push_back(channel.get());
            }
        }
    }
    return rows;
}

std::vector<Channel*> ChannelListOrder(const ChannelStore& store) {
    return ChannelListOrder(store, store.categoryId(), store.newChannels() != 0);
}

} // namespace qf
