#include "model/Category.h"

#include "platform/Text.h"

#include <algorithm>

namespace qf {

void Category::SetName(const WString& name) {
    if (name.isNull()) {
        return;
    }
    if (name.empty()) {
        name_.clear();
    } else {
        name_.set(name);
    }
}

Channel* Category::ChannelAt(int32_t index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= channels_.size()) {
        return nullptr;
    }
    return channels_[static_cast<std::size_t>(index)].get();
}

Channel* Category::AddChannel(std::unique_ptr<Channel> channel) {
    if (!channel) {
        return nullptr;
    }
    channels_.push_back(std::move(channel));
    return channels_.back().get();
}

Channel* Category::FindChannel(std::u16string_view xmlUrl) const {
    const auto it = std::find_if(channels_.begin(), channels_.end(), [xmlUrl](const auto& channel) {
        return channel && !channel->xmlUrl().isNull() &&
               EqualsIgnoreCase(channel->xmlUrl().view(), xmlUrl);
    });
    return it != channels_.end() ? it->get() : nullptr;
}

std::unique_ptr<Channel> Category::RemoveChannel(const Channel* channel) {
    const auto it = std::find_if(channels_.begin(), channels_.end(),
                                 [channel](const auto& entry) { return entry.get() == channel; });
    if (channel == nullptr || it == channels_.end()) {
        return nullptr;
    }
    std::unique_ptr<Channel> removed = std::move(*it);
    channels_.erase(it);
    return removed;
}

} // namespace qf
