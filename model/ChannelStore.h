#pragma once

#include "model/Category.h"
#include "model/FeedDate.h"
#include "model/RefreshFlags.h"
#include "model/ViewerSettings.h"
#include "platform/WString.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace qf {

// Sort keys of the news list.
enum SortBy : int32_t {
    kSortNone = 0,
    kSortByDate = 1,
    kSortByStatus = 2,
};

// The reader's whole model: the categories with their channels, the options kept in the channel
// store file, the viewer settings, and the flags through which the refresh engine and the screens
// coordinate. The store owns its categories.
class ChannelStore {
public:
    using CategoryList = std::vector<std::unique_ptr<Category>>;

    ChannelStore() = default;
    ChannelStore(const ChannelStore&) = delete;
    ChannelStore& operator=(const ChannelStore&) = delete;

    // Options kept in the channel store file.
    int32_t nextId() const { return nextId_; }
    int32_t newChannels() const { return newChannels_; }
    int32_t categoryId() const { return categoryId_; }
    int32_t sortBy() const { return sortBy_; }
    int32_t sortOrder() const { return sortOrder_; }
    int32_t newHeadlines() const { return newHeadlines_; }
    int32_t autoUpdate() const { return autoUpdate_; }
    int32_t updateValue() const { return updateValue_; }
    int32_t updateUnit() const { return updateUnit_; }
    const FeedDate& updateDate() const { return updateDate_; }
    void SetNextId(int32_t id) { nextId_ = id; }
    void IncrementNextId();
    void SetNewChannels(int32_t value) { newChannels_ = value; }
    void SetCategoryId(int32_t index) { categoryId_ = index; }
    void SetSortBy(int32_t key) { sortBy_ = key; }
    void SetSortOrder(int32_t order) { sortOrder_ = order; }
    void SetNewHeadlines(int32_t value) { newHeadlines_ = value; }
    void SetAutoUpdate(int32_t value) { autoUpdate_ = value; }
    void SetUpdateValue(int32_t value) { updateValue_ = value; }
    void SetUpdateUnit(int32_t unit) { updateUnit_ = unit; }
    void SetUpdateDate(const FeedDate& date) { updateDate_ = date; }

    // Viewer settings, kept in the settings file rather than the store file.
    const ViewerSettings& settings() const { return settings_; }
    ViewerSettings& settings() { return settings_; }

    // Full path of the channel store file; empty until it is first worked out.
    const std::u16string& channelStorePath() const { return channelStorePath_; }
    void SetChannelStorePath(std::u16string path) { channelStorePath_ = std::move(path); }
    // A store file that exists but could not be read: the next save of the store to that path
    // moves it aside first, so the subscriptions in it are never overwritten. Empty when none.
    const std::u16string& unreadableStorePath() const { return unreadableStorePath_; }
    void SetUnreadableStorePath(std::u16string path) { unreadableStorePath_ = std::move(path); }

    // Run-time state, never saved. `loaded` belongs to the main thread; the refresh's flags are
    // shared with the workers (see RefreshFlags for who may change what).
    bool loaded() const { return loaded_; }
    void SetLoaded(bool loaded) { loaded_ = loaded; }
    RefreshFlags& refresh() { return refresh_; }
    const RefreshFlags& refresh() const { return refresh_; }

    const CategoryList& categories() const { return categories_; }
    CategoryList& categories() { return categories_; }
    // The category at `index`, or nullptr outside the list.
    Category* CategoryAt(int32_t index) const;
    Category* AddCategory(std::unique_ptr<Category> category);
    // The first category whose name equals `name`, ignoring case.
    Category* FindCategory(std::u16string_view name) const;
    // The category named "Default", appended first when there is none.
    Category& DefaultCategory();

    // Gives a channel read from the store file its id. `storedId` is the file's value, or nullopt
    // when the file gives none (the channel then keeps 0); a stored 0 takes the next free id.
    // Answers whether the channel was given an id of the store's rather than the file's.
    bool AssignLoadedId(Channel& channel, std::optional<int32_t> storedId);
    // Run once the whole store file is read. Channels that share an id would share their cached
    // files, so of the channels with one id the first in list order keeps it and every later one
    // takes a fresh id (and is downloaded afresh). An id the file itself gives a channel goes
    // before one the load handed out (`handedOut`, as AssignLoadedId answered), whatever the
    // order.
    void RenumberSharedIds(std::span<const Channel* const> handedOut);
    // Sets nextID to one more than the largest channel id (1 with no channels, or none above 0).
    // The loader calls it when the file left nextID at 0.
    void RecomputeNextId();

    // Subscribes to one feed in the category shown (the first one when none is shown), giving it
    // the store's interval and the next id. Answers nullptr when that category already holds the
    // address, ignoring case.
    Channel* AddChannel(const WString& xmlUrl, const WString& title);
    // The title proposed for a channel about to be added without one: "Channel #" and the id it
    // will get.
    std::u16string ProposedTitle() const;
    // Adds copies of the source's channels (without stories) to the categories of the same names,
    // creating missing ones and passing over addresses a category already holds. A copy keeps its
    // source's id unless that is 0 or already taken in the store (also by an earlier copy); then
    // it takes the next free id. nextID ends above every id. The source stays with the caller.
    bool MergeCategories(const CategoryList& source);
    // Takes `channel` out of the category shown, or out of whichever category holds it when none
    // is shown, and hands it to the caller; nullptr when it is not found there.
    std::unique_ptr<Channel> RemoveChannel(const Channel* channel);
    // Whether any channel has this address, ignoring case.
    bool Contains(std::u16string_view xmlUrl) const;

    // Whether more whole seconds than the channel's interval (or the store's, when the channel has
    // none of its own) have passed since the channel was last updated, and its server neither
    // keeps it away nor still counts its copy as fresh.
    bool IsChannelDue(const Channel& channel) const;
    // Whether any channel is due.
    bool HasChannelDue() const;
    // Whether the store-wide automatic update is due: never run, or longer ago than the interval.
    bool IsAutoUpdateDue() const;

private:
    // Calls `visit(channel)` for every channel of every category, in list order.
    template <typename Visit> void ForEachChannel(Visit visit) const {
        for (const auto& category : categories_) {
            for (const auto& channel : category->channels()) {
                if (channel) {
                    visit(*channel);
                }
            }
        }
    }

    int32_t TakeNextId();
    // The next id from nextID on that is above 0 and not in `used`; nextID moves past it.
    int32_t TakeFreeId(const std::unordered_set<int32_t>& used);
    std::unordered_set<int32_t> UsedIds() const;
    // Raises nextID, where needed, to one more than the largest channel id.
    void KeepNextIdAboveEveryId();
    Category& CategoryForNewChannel();

    int32_t nextId_ = 0;
    CategoryList categories_;
    int32_t newChannels_ = 0;
    int32_t categoryId_ = -1;
    int32_t sortBy_ = kSortNone;
    int32_t sortOrder_ = 0;
    int32_t newHeadlines_ = 0;
    int32_t autoUpdate_ = 0;
    // One hour unless the store file says otherwise.
    int32_t updateValue_ = 1;
    int32_t updateUnit_ = kUnitHours;
    FeedDate updateDate_;

    ViewerSettings settings_;

    std::u16string channelStorePath_;
    std::u16string unreadableStorePath_;

    bool loaded_ = false;
    RefreshFlags refresh_;
};

} // namespace qf
