#pragma once

#include "model/ChannelImage.h"
#include "model/FeedDate.h"
#include "model/NewsItem.h"
#include "model/ServerState.h"
#include "model/UpdateInterval.h"
#include "platform/WString.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace qf {

enum ChannelState : int32_t {
    kChannelIdle = 0,
    kChannelUpdating = 1,
    kChannelFailed = 2,
};

// One subscribed feed: its address and credentials, its update interval, what the last refresh
// left (counts, character set, error), its logo and its stories in feed order. The channel owns
// its stories.
class Channel {
public:
    using ItemList = std::vector<std::unique_ptr<NewsItem>>;

    Channel() = default;
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    int32_t id() const { return id_; }
    int32_t state() const { return state_; }
    const WString& title() const { return title_; }
    const WString& xmlUrl() const { return xmlUrl_; }
    const WString& userName() const { return userName_; }
    const WString& password() const { return password_; }
    int32_t updateValue() const { return updateValue_; }
    int32_t updateUnit() const { return updateUnit_; }
    const WString& cacheFile() const { return cacheFile_; }
    int32_t itemCount() const { return itemCount_; }
    // Sets the count to the length of the item list, and answers it.
    int32_t RecountItems();
    int32_t newItemCount() const { return newItemCount_; }
    int32_t matchCount() const { return matchCount_; }
    bool modified() const { return modified_; }
    const WString& encoding() const { return encoding_; }
    int32_t codePage() const { return codePage_; }
    int32_t hasErrors() const { return hasErrors_; }
    const WString& errorText() const { return errorText_; }
    int32_t feedType() const { return feedType_; }
    const FeedDate& lastBuildDate() const { return lastBuildDate_; }
    const FeedDate& updateTime() const { return updateTime_; }
    const ChannelImage& image() const { return image_; }
    ChannelImage& image() { return image_; }
    const ServerState& server() const { return server_; }
    ServerState& server() { return server_; }
    const ItemList& items() const { return items_; }
    ItemList& items() { return items_; }
    // The story at `index`, or nullptr outside the list.
    NewsItem* ItemAt(int32_t index) const;

    // Text setters keep the old text when the source is null.
    void SetId(int32_t id) { id_ = id; }
    void SetState(int32_t state) { state_ = state; }
    void SetTitle(const WString& title) { title_.set(title); }
    // A different address forgets what the old address's server said (validators, pauses, gone).
    void SetXmlUrl(const WString& xmlUrl);
    void SetUserName(const WString& userName) { userName_.set(userName); }
    void SetPassword(const WString& password) { password_.set(password); }
    void SetUpdateValue(int32_t value) { updateValue_ = value; }
    void SetUpdateUnit(int32_t unit) { updateUnit_ = unit; }
    void SetCacheFile(const WString& cacheFile) { cacheFile_.set(cacheFile); }
    // Ignored below 1: a refresh that found no stories keeps the count the list showed before.
    void SetItemCount(int32_t count);
    // Ignored when negative.
    void SetNewItemCount(int32_t count);
    void SetMatchCount(int32_t count) { matchCount_ = count; }
    void SetModified(bool modified) { modified_ = modified; }
    void SetEncoding(const WString& encoding) { encoding_.set(encoding); }
    void SetCodePage(int32_t codePage) { codePage_ = codePage; }
    void SetHasErrors(int32_t hasErrors) { hasErrors_ = hasErrors; }
    void SetFeedType(int32_t feedType) { feedType_ = feedType; }
    void SetLastBuildDate(const FeedDate& date) { lastBuildDate_ = date; }
    void SetUpdateTime(const FeedDate& date) { updateTime_ = date; }

    // Stores `text`; with `stamp`, followed by "@" and the current time in the short local form,
    // which the channel screen shows apart from the message.
    void SetErrorText(const WString& text, bool stamp);
    // The same with the text of a string-table entry.
    void SetErrorTextFromString(int stringId, bool stamp);
    // The string-table text followed directly by `code` in decimal.
    void SetErrorTextWithCode(int stringId, int32_t code, bool stamp);

    void AddItem(std::unique_ptr<NewsItem> item);
    // Deletes every story and zeroes the item, unread and match counts.
    void Clear();
    // Sets the item count from the list (kept when the list is empty) and the unread count to the
    // stories whose read flag is clear.
    void CountItems();
    // Copies title, address and id; with `withItems`, also replaces this channel's stories with
    // copies of the source's, in order.
    void CopyFrom(const Channel& source, bool withItems);

private:
    int32_t id_ = 0;
    int32_t state_ = kChannelIdle;
    WString title_;
    WString xmlUrl_;
    WString userName_;
    WString password_;
    int32_t updateValue_ = kIntervalNotSet;
    int32_t updateUnit_ = kIntervalNotSet;
    WString cacheFile_;
    int32_t itemCount_ = 0;
    int32_t newItemCount_ = 0;
    int32_t matchCount_ = 0;
    bool modified_ = false;
    WString encoding_;
    int32_t codePage_ = 0;
    int32_t hasErrors_ = 0;
    WString errorText_;
    int32_t feedType_ = 0;
    FeedDate lastBuildDate_;
    FeedDate updateTime_;
    ChannelImage image_;
    ServerState server_;
    ItemList items_;
};

} // namespace qf
