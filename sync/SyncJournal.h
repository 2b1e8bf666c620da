#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qf {

// What the last sync left for the next one, kept in the data folder ("QFSync.json") so that it
// moves with the data: the subscriptions and read states both sides agreed on, the server's
// items already looked up, and the local changes queued since.
struct SyncJournal {
    // Whose journal it is; a journal of another account or server counts as none.
    std::u16string server;
    std::u16string user;
    // When the last successful sync ended (FeedDate ticks; 0 before the first).
    int64_t syncedAt = 0;
    // Feed addresses (as SubscriptionKey gives them) subscribed on both sides at the last sync,
    // with the server's stream id.
    std::map<std::u16string, std::string> subscriptions;

    enum class Agreed : int8_t {
        kUnknown = -1, // the item is known, no story here matched it yet
        kUnread = 0,
        kRead = 1,
    };
    struct Item {
        std::string streamId;
        std::u16string link;
        Agreed agreed = Agreed::kUnknown;
    };
    // The server's items by id.
    std::unordered_map<uint64_t, Item> items;

    // A read state changed here, not sent yet.
    struct Change {
        int64_t at = 0;       // FeedDate ticks
        std::u16string feed;  // SubscriptionKey of the channel's address
        std::u16string story; // the story's key (its link, else its guid)
        bool read = false;
    };
    std::vector<Change> changes;

    bool BelongsTo(std::u16string_view otherServer, std::u16string_view otherUser) const {
        return server == otherServer && user == otherUser;
    }
};

// How feed addresses are matched across the two sides: ignoring case and a trailing slash.
std::u16string SubscriptionKey(std::u16string_view url);

// The journal in the data folder of `volume`; an empty one when there is none. False when the
// file exists but cannot be read (a sync then must not go on, or it would forget the queue).
bool LoadSyncJournal(std::u16string_view volume, SyncJournal& journal);
// Writes the journal atomically. False when it cannot be written.
bool SaveSyncJournal(std::u16string_view volume, const SyncJournal& journal);

} // namespace qf
