#include "sync/SyncRun.h"

#include "model/Category.h"
#include "model/ChannelStore.h"
#include "platform/StringTable.h"
#include "store/CachedFeeds.h"
#include "store/ChannelStoreFile.h"
#include "sync/GReaderClient.h"
#include "sync/SyncJournal.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>

namespace qf {

namespace {

struct LocalStory {
    std::u16string key;
    bool read = false;
};

// A channel as the pass sees it, copied on the owner's thread.
struct LocalChannel {
    int32_t id = 0;
    std::u16string url;
    std::u16string key;
    std::u16string title;
    std::u16string category;
    int32_t unread = 0;
    std::vector<LocalStory> stories;
};

struct NewChannel {
    std::u16string url;
    std::u16string title;
    std::u16string category;
};

struct ReceivedState {
    int32_t channelId = 0;
    std::u16string story;
    bool read = false;
};

// Stories by feed and key, for the two tables below.
using StoryIndex = std::map<std::pair<std::u16string, std::u16string>, bool>;

// Channels whose stories are not in memory read them from their cached feeds.
void LoadStories(ChannelStore& store, std::u16string_view volume) {
    for (const auto& category : store.categories()) {
        for (const auto& channel : category->channels()) {
            if (channel && channel->items().empty() && channel->itemCount() > 0) {
                LoadCachedFeed(*channel, volume);
            }
        }
    }
}

std::vector<LocalChannel> CopyChannels(const ChannelStore& store) {
    std::vector<LocalChannel> channels;
    for (const auto& category : store.categories()) {
        for (const auto& channel : category->channels()) {
            if (!channel) {
                continue;
            }
            LocalChannel copy{channel->id(),
                              std::u16string(channel->xmlUrl().view()),
                              SubscriptionKey(channel->xmlUrl().view()),
                              std::u16string(channel->title().view()),
                              std::u16string(category->name().view()),
                              channel->newItemCount(),
                              {}};
            for (const auto& item : channel->items()) {
                copy.stories.push_back({std::u16string(item->key()), item->isRead()});
            }
            channels.push_back(std::move(copy));
        }
    }
    return channels;
}

// The latest queued state of every story that has one.
StoryIndex QueuedStates(const SyncJournal& journal) {
    StoryIndex queued;
    for (const auto& change : journal.changes) {
        queued[{change.feed, change.story}] = change.read;
    }
    return queued;
}

// The state both sides agreed on at the last sync, by feed and story.
StoryIndex AgreedStates(const SyncJournal& journal) {
    std::unordered_map<std::string, std::u16string> feedOfStream;
    for (const auto& [key, streamId] : journal.subscriptions) {
        feedOfStream[streamId] = key;
    }
    StoryIndex agreed;
    for (const auto& [id, item] : journal.items) {
        const auto feed = feedOfStream.find(item.streamId);
        if (item.agreed != SyncJournal::Agreed::kUnknown && feed != feedOfStream.end()) {
            agreed[{feed->second, item.link}] = item.agreed == SyncJournal::Agreed::kRead;
        }
    }
    return agreed;
}

// Queues every story whose state differs from the one last queued for it, else from the one
// agreed at the last sync, else from unread (what a story the server never saw starts as).
bool NoteChanges(SyncJournal& journal, const std::vector<LocalChannel>& channels, int64_t now) {
    const StoryIndex queued = QueuedStates(journal);
    const StoryIndex agreed = AgreedStates(journal);
    bool noted = false;
    for (const auto& channel : channels) {
        for (const auto& story : channel.stories) {
            const std::pair<std::u16string, std::u16string> where{channel.key, story.key};
            bool before = false;
            if (const auto last = queued.find(where); last != queued.end()) {
                before = last->second;
            } else if (const auto both = agreed.find(where); both != agreed.end()) {
                before = both->second;
            }
            if (story.read != before) {
                journal.changes.push_back({now, channel.key, story.key, story.read});
                noted = true;
            }
        }
    }
    return noted;
}

using StoryPlace = std::pair<std::u16string, std::u16string>;

// What the read-state merge works from and what it collects.
struct ReadMerge {
    // The server's item ids by stream and link.
    std::map<std::pair<std::string, std::u16string>, std::vector<uint64_t>> byLink;
    std::unordered_set<uint64_t> unread;
    StoryIndex queued;
    StoryIndex agreed;
    std::vector<uint64_t> toRead;
    std::vector<uint64_t> toUnread;
    // The stories whose queued changes this sync settled.
    std::set<StoryPlace> handled;
};

std::u16string CategoryOf(const ServerSubscription& subscription) {
    return subscription.label.empty() ? std::u16string(LoadString(kStrDefaultCategory))
                                      : subscription.label;
}

} // namespace

struct SyncRun::State {
    SyncAccount account;
    std::u16string volume;
    int64_t now = 0;
    bool journalRead = true;
    SyncJournal journal;
    std::vector<LocalChannel> channels;

    // What the exchange decided for the store, and the journal to keep once it is applied.
    bool exchanged = false;
    std::vector<NewChannel> toAdd;
    std::vector<int32_t> toRemove;
    std::vector<ReceivedState> toMark;
    SyncJournal next;

    SyncReport report;
    bool loginRejected = false;

    bool Fail(const GReaderClient& client);
    bool MergeSubscriptions(GReaderClient& client);
    bool MergeServerSubscription(GReaderClient& client, const ServerSubscription& subscription,
                                 const std::unordered_set<std::u16string>& localKeys);
    bool MergeLocalChannel(GReaderClient& client, const LocalChannel& channel, bool& subscribed);
    bool LearnItems(GReaderClient& client, std::unordered_set<uint64_t>& unread);
    bool MergeReadStates(GReaderClient& client, const SyncProgress& progress);
    void MergeStory(ReadMerge& merge, const LocalChannel& channel, const std::string& streamId,
                    const LocalStory& story);
    void KeepUnsentChanges(const std::set<StoryPlace>& handled);
};

bool SyncRun::State::Fail(const GReaderClient& client) {
    report.errors.push_back(client.errorText());
    loginRejected = client.loginRejected();
    return false;
}

// Subscriptions on one side only were added or removed there since the last sync: the journal
// tells which.
bool SyncRun::State::MergeSubscriptions(GReaderClient& client) {
    std::vector<ServerSubscription> listed;
    if (!client.ListSubscriptions(listed)) {
        return Fail(client);
    }
    std::unordered_set<std::u16string> localKeys;
    for (const auto& channel : channels) {
        localKeys.insert(channel.key);
    }
    std::unordered_set<std::u16string> serverKeys;
    for (const auto& subscription : listed) {
        if (serverKeys.insert(SubscriptionKey(subscription.url)).second &&
            !MergeServerSubscription(client, subscription, localKeys)) {
            return false;
        }
    }
    bool subscribed = false;
    for (const auto& channel : channels) {
        if (serverKeys.contains(channel.key)) {
            continue;
        }
        if (!MergeLocalChannel(client, channel, subscribed)) {
            return false;
        }
        // Two channels of one feed (in two categories) are subscribed once.
        if (!journal.subscriptions.contains(channel.key)) {
            serverKeys.insert(channel.key);
        }
    }
    if (!subscribed) {
        return true;
    }
    // The server names the new subscriptions' streams only in its list.
    if (!client.ListSubscriptions(listed)) {
        return Fail(client);
    }
    for (const auto& subscription : listed) {
        const std::u16string key = SubscriptionKey(subscription.url);
        if (localKeys.contains(key) && !next.subscriptions.contains(key)) {
            next.subscriptions[key] = subscription.streamId;
        }
    }
    return true;
}

// A subscription the server has: matched, dropped here since the last sync, or new there.
bool SyncRun::State::MergeServerSubscription(GReaderClient& client,
                                             const ServerSubscription& subscription,
                                             const std::unordered_set<std::u16string>& localKeys) {
    const std::u16string key = SubscriptionKey(subscription.url);
    if (localKeys.contains(key)) {
        next.subscriptions[key] = subscription.streamId;
    } else if (!journal.subscriptions.contains(key)) {
        toAdd.push_back({subscription.url, subscription.title, CategoryOf(subscription)});
        next.subscriptions[key] = subscription.streamId;
        ++report.addedLocally;
    } else if (client.Unsubscribe(subscription.streamId)) {
        ++report.removedOnServer;
    } else if (client.loginRejected() || client.stopped()) {
        return Fail(client);
    } else {
        // Tried again at the next sync.
        report.errors.push_back(client.errorText());
        next.subscriptions[key] = subscription.streamId;
    }
    return true;
}

// A channel the server lacks: dropped there since the last sync, or new here.
bool SyncRun::State::MergeLocalChannel(GReaderClient& client, const LocalChannel& channel,
                                       bool& subscribed) {
    if (const auto was = journal.subscriptions.find(channel.key);
        was != journal.subscriptions.end()) {
        // Unread stories keep the channel here until they are read.
        if (channel.unread == 0) {
            toRemove.push_back(channel.id);
            ++report.removedLocally;
        } else {
            report.kept.push_back(channel.title);
            next.subscriptions[channel.key] = was->second;
        }
    } else if (client.Subscribe(channel.url, channel.title, channel.category)) {
        ++report.addedOnServer;
        subscribed = true;
    } else if (client.loginRejected() || client.stopped()) {
        return Fail(client);
    } else {
        report.errors.push_back(client.errorText());
    }
    return true;
}

// Every item of the reading list with its state; links are asked only for items the journal does
// not know yet.
bool SyncRun::State::LearnItems(GReaderClient& client, std::unordered_set<uint64_t>& unread) {
    std::vector<uint64_t> all;
    std::vector<uint64_t> unreadIds;
    if (!client.ListItemIds(false, all) || !client.ListItemIds(true, unreadIds)) {
        return Fail(client);
    }
    unread.insert(unreadIds.begin(), unreadIds.end());
    // An unread id missing from the full list (it changed between the two answers) still counts.
    all.insert(all.end(), unreadIds.begin(), unreadIds.end());
    std::vector<uint64_t> unknown;
    for (const uint64_t id : all) {
        if (next.items.contains(id)) {
            continue;
        }
        if (const auto known = journal.items.find(id); known != journal.items.end()) {
            next.items[id] = known->second;
        } else {
            // Held until the links arrive, so that a repeated id is asked for once.
            next.items[id] = {};
            unknown.push_back(id);
        }
    }
    std::vector<ServerItem> fetched;
    if (!unknown.empty() && !client.FetchItems(unknown, fetched)) {
        return Fail(client);
    }
    for (auto& item : fetched) {
        next.items[item.id] = {std::move(item.streamId), std::move(item.link),
                               SyncJournal::Agreed::kUnknown};
    }
    return true;
}

// Story by story: a state changed on one side only goes to the other; when both sides changed,
// the server's change counts as the later one, since it is seen only now, after every queued
// local change.
bool SyncRun::State::MergeReadStates(GReaderClient& client, const SyncProgress& progress) {
    ReadMerge merge;
    if (!LearnItems(client, merge.unread)) {
        return false;
    }
    for (const auto& [id, item] : next.items) {
        if (!item.link.empty()) {
            merge.byLink[{item.streamId, item.link}].push_back(id);
        }
    }
    merge.queued = QueuedStates(journal);
    merge.agreed = AgreedStates(journal);
    for (const auto& channel : channels) {
        if (const auto stream = next.subscriptions.find(channel.key);
            stream != next.subscriptions.end()) {
            for (const auto& story : channel.stories) {
                MergeStory(merge, channel, stream->second, story);
            }
        }
    }
    if (progress) {
        progress(u"Sending read states", 0,
                 static_cast<int32_t>(merge.toRead.size() + merge.toUnread.size()));
    }
    if (!client.MarkItems(merge.toRead, true) || !client.MarkItems(merge.toUnread, false)) {
        return Fail(client);
    }
    KeepUnsentChanges(merge.handled);
    return true;
}

void SyncRun::State::MergeStory(ReadMerge& merge, const LocalChannel& channel,
                                const std::string& streamId, const LocalStory& story) {
    const auto ids = merge.byLink.find({streamId, story.key});
    if (ids == merge.byLink.end()) {
        return;
    }
    const bool serverRead = !merge.unread.contains(ids->second.front());
    const std::pair<std::u16string, std::u16string> where{channel.key, story.key};
    const auto before = merge.agreed.find(where);
    // Without an agreed state, an unread item is one the server never changed.
    const bool serverChanged =
        before != merge.agreed.end() ? serverRead != before->second : serverRead;
    bool final = serverRead;
    if (story.read != serverRead) {
        if (merge.queued.contains(where) && !serverChanged) {
            auto& batch = story.read ? merge.toRead : merge.toUnread;
            batch.insert(batch.end(), ids->second.begin(), ids->second.end());
            final = story.read;
            ++report.readStatesSent;
        } else {
            toMark.push_back({channel.id, story.key, serverRead});
            ++report.readStatesReceived;
        }
    }
    merge.handled.insert(where);
    for (const uint64_t id : ids->second) {
        next.items[id].agreed = final ? SyncJournal::Agreed::kRead : SyncJournal::Agreed::kUnread;
    }
}

// A change to a story the server does not know yet waits for a later sync, as long as its channel
// is still synced.
void SyncRun::State::KeepUnsentChanges(const std::set<StoryPlace>& handled) {
    for (const auto& change : journal.changes) {
        if (!handled.contains({change.feed, change.story}) &&
            next.subscriptions.contains(change.feed)) {
            next.changes.push_back(change);
        }
    }
}

std::unique_ptr<SyncRun> SyncRun::Prepare(ChannelStore& store, const SyncAccount& account,
                                          const FeedDate& now) {
    auto state = std::make_unique<State>();
    state->account = account;
    state->volume = store.settings().storageVolume().str();
    state->now = now.Ticks();
    state->journalRead = LoadSyncJournal(state->volume, state->journal);
    if (!state->journal.BelongsTo(account.server, account.user)) {
        state->journal = SyncJournal();
        state->journal.server = account.server;
        state->journal.user = account.user;
    }
    LoadStories(store, state->volume);
    state->channels = CopyChannels(store);
    NoteChanges(state->journal, state->channels, state->now);
    return std::unique_ptr<SyncRun>(new SyncRun(std::move(state)));
}

SyncRun::SyncRun(std::unique_ptr<State> state) : state_(std::move(state)) {}
SyncRun::~SyncRun() = default;

bool SyncRun::Exchange(const std::function<bool()>& stop, const SyncProgress& progress) {
    State& state = *state_;
    if (!state.journalRead) {
        state.report.errors.emplace_back(
            u"The sync state in the data folder cannot be read; remove "
            u"QFSync.json to sync afresh.");
        return false;
    }
    state.next.server = state.account.server;
    state.next.user = state.account.user;
    GReaderClient client(state.account.server, state.account.authToken, stop);
    if (progress) {
        progress(u"Synchronising subscriptions", 0, 0);
    }
    if (!state.MergeSubscriptions(client)) {
        return false;
    }
    if (progress) {
        progress(u"Synchronising read states", 0, 0);
    }
    if (!state.MergeReadStates(client, progress)) {
        return false;
    }
    state.exchanged = true;
    return true;
}

namespace {

Channel* FindChannel(ChannelStore& store, int32_t id, Category** holder) {
    for (const auto& category : store.categories()) {
        for (const auto& channel : category->channels()) {
            if (channel && channel->id() == id) {
                *holder = category.get();
                return channel.get();
            }
        }
    }
    return nullptr;
}

void AddChannels(ChannelStore& store, const std::vector<NewChannel>& channels) {
    ChannelStore::CategoryList added;
    for (const auto& channel : channels) {
        auto category = std::find_if(added.begin(), added.end(), [&](const auto& existing) {
            return existing->name().view() == channel.category;
        });
        if (category == added.end()) {
            added.push_back(std::make_unique<Category>(WString(channel.category)));
            category = std::prev(added.end());
        }
        auto copy = std::make_unique<Channel>();
        copy->SetXmlUrl(WString(channel.url));
        copy->SetTitle(WString(channel.title.empty() ? channel.url : channel.title));
        copy->SetUpdateValue(store.updateValue());
        copy->SetUpdateUnit(store.updateUnit());
        (*category)->AddChannel(std::move(copy));
    }
    store.MergeCategories(added);
}

void MarkStory(Channel& channel, std::u16string_view story, bool read) {
    for (const auto& item : channel.items()) {
        if (item->key() == story) {
            item->SetRead(read ? 1 : 0);
        }
    }
    channel.CountItems();
    channel.SetModified(true);
}

} // namespace

bool SyncRun::Finish(ChannelStore& store) {
    State& state = *state_;
    if (!state.exchanged) {
        return false;
    }
    AddChannels(store, state.toAdd);
    for (const int32_t id : state.toRemove) {
        Category* holder = nullptr;
        if (Channel* channel = FindChannel(store, id, &holder);
            channel != nullptr && DeleteChannelFiles(*channel, state.volume)) {
            holder->RemoveChannel(channel);
        }
    }
    for (const auto& received : state.toMark) {
        Category* holder = nullptr;
        if (Channel* channel = FindChannel(store, received.channelId, &holder)) {
            MarkStory(*channel, received.story, received.read);
        }
    }
    std::u16string notice;
    if (!SaveAll(store, &notice)) {
        state.report.errors.push_back(notice.empty() ? u"Failed to save the channels." : notice);
        return false;
    }
    // Changes made here while the exchange ran are queued against what was just agreed.
    state.next.syncedAt = state.now;
    NoteChanges(state.next, CopyChannels(store), FeedDate::NowUtc().Ticks());
    if (!SaveSyncJournal(state.volume, state.next)) {
        state.report.errors.emplace_back(u"Failed to save the sync state in the data folder.");
        return false;
    }
    return true;
}

const SyncReport& SyncRun::report() const {
    return state_->report;
}

bool SyncRun::loginRejected() const {
    return state_->loginRejected;
}

void QueueLocalChanges(const ChannelStore& store, const FeedDate& now) {
    const std::optional<SyncAccount> account = LoadSyncAccount();
    if (!account) {
        return;
    }
    const std::u16string volume(store.settings().storageVolume().view());
    SyncJournal journal;
    if (!LoadSyncJournal(volume, journal)) {
        return;
    }
    if (!journal.BelongsTo(account->server, account->user)) {
        journal = SyncJournal();
        journal.server = account->server;
        journal.user = account->user;
    }
    // Only stories in memory can have changed since they were saved.
    if (NoteChanges(journal, CopyChannels(store), now.Ticks())) {
        SaveSyncJournal(volume, journal);
    }
}

} // namespace qf
