#pragma once

#include <optional>
#include <string>

namespace qf {

// The Google Reader API account the reader syncs with, kept in the settings file's [Sync]
// section. The password is never kept: the server's auth token stands in for it until the server
// stops accepting it, and then the user logs in again.
struct SyncAccount {
    // The API's base address as the user gave it (FreshRSS: ".../api/greader.php").
    std::u16string server;
    std::u16string user;
    std::string authToken;
};

// The account of the settings file; nullopt when there is none (or no settings file).
std::optional<SyncAccount> LoadSyncAccount();
// Stores the account and makes the settings file readable by its owner only, since the token
// opens the account. False when the file cannot be written.
bool SaveSyncAccount(const SyncAccount& account);
// Removes the account from the settings file. True when there is none afterwards.
bool ForgetSyncAccount();

} // namespace qf
