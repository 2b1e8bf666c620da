#pragma once

#include "model/Channel.h"
#include "platform/WString.h"

#include <memory>
#include <string_view>
#include <vector>

namespace qf {

// A named group of channels, in the order the user sees them. The category owns its channels.
class Category {
public:
    using ChannelList = std::vector<std::unique_ptr<Channel>>;

    Category() = default;
    explicit Category(const WString& name) { SetName(name); }
    Category(const Category&) = delete;
    Category& operator=(const Category&) = delete;

    const WString& name() const { return name_; }
    // A null source keeps the name; an empty one leaves the category without a name (null), so
    // the store file writes no name rather than an empty one.
    void SetName(const WString& name);

    const ChannelList& channels() const { return channels_; }
    ChannelList& channels() { return channels_; }
    // The channel at `index`, or nullptr outside the list.
    Channel* ChannelAt(int32_t index) const;
    Channel* AddChannel(std::unique_ptr<Channel> channel);
    // The first channel whose address equals `xmlUrl`, ignoring case.
    Channel* FindChannel(std::u16string_view xmlUrl) const;
    // Takes `channel` out of the list and hands it to the caller; nullptr when it is not here.
    std::unique_ptr<Channel> RemoveChannel(const Channel* channel);

private:
    WString name_;
    ChannelList channels_;
};

} // namespace qf
