#include "sync/SyncJournal.h"

#include "model/DataFolder.h"
#include "platform/AtomicFile.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/FsPath.h"
#include "platform/Text.h"

#include <nlohmann/json.hpp>

namespace qf {

namespace {

using Json = nlohmann::json;

constexpr std::u16string_view kJournalFileName = u"QFSync.json";
constexpr int kJournalVersion = 1;

std::optional<std::u16string> JournalPath(std::u16string_view volume) {
    return DataFilePath(volume, WString(kJournalFileName));
}

std::string Utf8(std::u16string_view text) {
    return Utf16ToUtf8(text);
}

std::u16string Utf16(const Json& value) {
    return Utf8ToUtf16(value.get<std::string>());
}

Json ToJson(const SyncJournal& journal) {
    Json subscriptions = Json::object();
    for (const auto& [key, streamId] : journal.subscriptions) {
        subscriptions[Utf8(key)] = streamId;
    }
    Json items = Json::array();
    for (const auto& [id, item] : journal.items) {
        items.push_back(
            Json::array({id, item.streamId, Utf8(item.link), static_cast<int>(item.agreed)}));
    }
    Json changes = Json::array();
    for (const auto& change : journal.changes) {
        changes.push_back(
            Json::array({change.at, Utf8(change.feed), Utf8(change.story), change.read}));
    }
    return Json{{"version", kJournalVersion},
                {"server", Utf8(journal.server)},
                {"user", Utf8(journal.user)},
                {"syncedAt", journal.syncedAt},
                {"subscriptions", subscriptions},
                {"items", items},
                {"changes", changes}};
}

void FromJson(const Json& json, SyncJournal& journal) {
    journal.server = Utf16(json.at("server"));
    journal.user = Utf16(json.at("user"));
    journal.syncedAt = json.at("syncedAt").get<int64_t>();
    for (const auto& [key, streamId] : json.at("subscriptions").items()) {
        journal.subscriptions[Utf8ToUtf16(key)] = streamId.get<std::string>();
    }
    for (const auto& item : json.at("items")) {
        const int agreed = item.at(3).get<int>();
        journal.items[item.at(0).get<uint64_t>()] = {item.at(1).get<std::string>(),
                                                     Utf16(item.at(2)),
                                                     agreed == 0   ? SyncJournal::Agreed::kUnread
                                                     : agreed == 1 ? SyncJournal::Agreed::kRead
                                                                   : SyncJournal::Agreed::kUnknown};
    }
    for (const auto& change : json.at("changes")) {
        journal.changes.push_back({change.at(0).get<int64_t>(), Utf16(change.at(1)),
                                   Utf16(change.at(2)), change.at(3).get<bool>()});
    }
}

} // namespace

std::u16string SubscriptionKey(std::u16string_view url) {
    while (!url.empty() && url.back() == u'/') {
        url.remove_suffix(1);
    }
    std::u16string key(url);
    for (char16_t& c : key) {
        c = FoldCase(c);
    }
    return key;
}

bool LoadSyncJournal(std::u16string_view volume, SyncJournal& journal) {
    journal = SyncJournal();
    const auto path = JournalPath(volume);
    if (!path || !FileExists(*path)) {
        return true;
    }
    const auto bytes = ReadFileBytes(*path);
    if (!bytes) {
        return false;
    }
    try {
        const Json json = Json::parse(*bytes);
        if (json.at("version").get<int>() != kJournalVersion) {
            return false;
        }
        FromJson(json, journal);
        return true;
    } catch (const Json::exception&) {
        journal = SyncJournal();
        return false;
    }
}

bool SaveSyncJournal(std::u16string_view volume, const SyncJournal& journal) {
    const auto path = JournalPath(volume);
    if (!path) {
        return false;
    }
    // Links from feeds may hold bytes that are no UTF-8; they are replaced rather than refused.
    const std::string text = ToJson(journal).dump(-1, ' ', false, Json::error_handler_t::replace);
    return CreateParentDirectory(*path) && WriteFileAtomically(ToFsPath(*path), text);
}

} // namespace qf
