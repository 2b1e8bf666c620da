#include "model/ChannelStore.h"

#include "platform/StringTable.h"
#include "platform/Text.h"

#include <algorithm>
#include <limits>
#include <string>

namespace qf {

namespace {

constexpr int32_t kMaxId = std::numeric_limits<int32_t>::max();

// One more than `id`, held at the largest id rather than wrapping into negative ids.
int32_t IdAfter(int32_t id) {
    return id < kMaxId ? id + 1 : kMaxId;
}

// Whether more than `seconds` whole seconds have passed since `since`. A date never set lies
// infinitely far back.
bool LongerAgoThan(const FeedDate& since, int64_t seconds) {
    if (!since.valid()) {
        return true;
    }
    return FeedDate::SecondsBetween(FeedDate::NowUtc(), since) > seconds;
}

} // namespace

void ChannelStore::IncrementNextId() {
    nextId_ = IdAfter(nextId_);
}

int32_t ChannelStore::TakeNextId() {
    const int32_t id = nextId_;
    IncrementNextId();
    return id;
}

Category* ChannelStore::CategoryAt(int32_t index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= categories_.size()) {
        return nullptr;
    }
    return categories_[static_cast<std::size_t>(index)].get();
}

Category* ChannelStore::AddCategory(std::unique_ptr<Category> category) {
    if (!category) {
        return nullptr;
    }
    categories_.push_back(std::move(category));
    return categories_.back().get();
}

Category* ChannelStore::FindCategory(std::u16string_view name) const {
    const auto it = std::find_if(categories_.begin(), categories_.end(), [name](const auto& c) {
        return c && EqualsIgnoreCase(c->name().view(), name);
    });
    return it != categories_.end() ? it->get() : nullptr;
}

Category& ChannelStore::DefaultCategory() {
    const std::u16string_view name = LoadString(kStrDefaultCategory);
    if (Category* existing = FindCategory(name)) {
        return *existing;
    }
    return *AddCategory(std::make_unique<Category>(WString(name)));
}

bool ChannelStore::AssignLoadedId(Channel& channel, std::optional<int32_t> storedId) {
    if (!storedId) {
        return false;
    }
    if (*storedId != 0) {
        channel.SetId(*storedId);
        nextId_ = std::max(nextId_, IdAfter(*storedId));
        return false;
    }
    channel.SetId(TakeNextId());
    return true;
}

void ChannelStore::RenumberSharedIds(std::span<const Channel* const> handedOut) {
    const std::unordered_set<const Channel*> numberedByLoad(handedOut.begin(), handedOut.end());
    std::unordered_set<int32_t> claimed;
    std::unordered_set<const Channel*> sharing;
    // The file's own ids claim theirs first, then the ids the load handed out.
    for (const bool byLoad : {false, true}) {
        ForEachChannel([&](Channel& channel) {
            if (numberedByLoad.contains(&channel) == byLoad &&
                !claimed.insert(channel.id()).second) {
                sharing.insert(&channel);
            }
        });
    }
    if (sharing.empty()) {
        return;
    }
    KeepNextIdAboveEveryId();
    ForEachChannel([&](Channel& channel) {
        if (sharing.contains(&channel)) {
            channel.SetId(TakeNextId());
        }
    });
}

void ChannelStore::RecomputeNextId() {
    nextId_ = 0;
    KeepNextIdAboveEveryId();
}

void ChannelStore::KeepNextIdAboveEveryId() {
    int32_t largest = 0;
    ForEachChannel(
        [&largest](const Channel& channel) { largest = std::max(largest, channel.id()); });
    nextId_ = std::max(nextId_, IdAfter(largest));
}

std::unordered_set<int32_t> ChannelStore::UsedIds() const {
    std::unordered_set<int32_t> used;
    ForEachChannel([&used](const Channel& channel) { used.insert(channel.id()); });
    return used;
}

int32_t ChannelStore::TakeFreeId(const std::unordered_set<int32_t>& used) {
    while ((nextId_ <= 0 || used.contains(nextId_)) && nextId_ < kMaxId) {
        IncrementNextId();
    }
    return TakeNextId();
}

Category& ChannelStore::CategoryForNewChannel() {
    if (categories_.empty()) {
        return DefaultCategory();
    }
    if (Category* shown = CategoryAt(categoryId_)) {
        return *shown;
    }
    return *categories_.front();
}

std::u16string ChannelStore::ProposedTitle() const {
    return std::u16string(LoadString(kStrNewChannelTitle)) + AsciiToUtf16(std::to_string(nextId_));
}

Channel* ChannelStore::AddChannel(const WString& xmlUrl, const WString& title) {
    Category& target = CategoryForNewChannel();
    if (target.FindChannel(xmlUrl.view()) != nullptr) {
        return nullptr;
    }
    auto channel = std::make_unique<Channel>();
    channel->SetXmlUrl(xmlUrl);
    channel->SetTitle(title);
    channel->SetUpdateValue(updateValue_);
    channel->SetUpdateUnit(updateUnit_);
    channel->SetId(TakeNextId());
    return target.AddChannel(std::move(channel));
}

bool ChannelStore::MergeCategories(const CategoryList& source) {
    std::unordered_set<int32_t> used = UsedIds();
    for (const auto& from : source) {
        if (!from || from->channels().empty()) {
            continue;
        }
        Category* into = FindCategory(from->name().view());
        if (into == nullptr) {
            into = AddCategory(std::make_unique<Category>(from->name()));
        }
        for (const auto& channel : from->channels()) {
            if (!channel || into->FindChannel(channel->xmlUrl().view()) != nullptr) {
                continue;
            }
            auto copy = std::make_unique<Channel>();
            copy->CopyFrom(*channel, false);
            // Channels that shared an id would share their cached files.
            if (copy->id() == 0 || used.contains(copy->id())) {
                copy->SetId(TakeFreeId(used));
            }
            used.insert(copy->id());
            into->AddChannel(std::move(copy));
        }
    }
    KeepNextIdAboveEveryId();
    return true;
}

std::unique_ptr<Channel> ChannelStore::RemoveChannel(const Channel* channel) {
    if (Category* shown = CategoryAt(categoryId_)) {
        return shown->RemoveChannel(channel);
    }
    for (const auto& category : categories_) {
        if (auto removed = category->RemoveChannel(channel)) {
            return removed;
        }
    }
    return nullptr;
}

bool ChannelStore::Contains(std::u16string_view xmlUrl) const {
    return std::any_of(categories_.begin(), categories_.end(), [xmlUrl](const auto& category) {
        return category->FindChannel(xmlUrl) != nullptr;
    });
}

bool ChannelStore::IsChannelDue(const Channel& channel) const {
    // A channel's own value brings its own unit, even an unset one (which then counts seconds).
    const int64_t interval = channel.updateValue() != kIntervalNotSet
                                 ? IntervalSeconds(channel.updateValue(), channel.updateUnit())
                                 : IntervalSeconds(updateValue_, updateUnit_);
    // Automatic updates also wait for the server: for the end of a pause it asked for, for its
    // copy to go stale, and forever for a feed it called gone.
    const FeedDate now = FeedDate::NowUtc();
    return LongerAgoThan(channel.updateTime(), interval) && !channel.server().KeepsAway(now) &&
           !channel.server().IsFresh(now);
}

bool ChannelStore::HasChannelDue() const {
    return std::any_of(categories_.begin(), categories_.end(), [this](const auto& category) {
        return std::any_of(
            category->channels().begin(), category->channels().end(),
            [this](const auto& channel) { return channel && IsChannelDue(*channel); });
    });
}

bool ChannelStore::IsAutoUpdateDue() const {
    return LongerAgoThan(updateDate_, IntervalSeconds(updateValue_, updateUnit_));
}

} // namespace qf
