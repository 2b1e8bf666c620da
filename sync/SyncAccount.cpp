#include "sync/SyncAccount.h"

#include "platform/IniFile.h"
#include "platform/SettingsFile.h"
#include "platform/Text.h"

namespace qf {

namespace {

constexpr std::string_view kSection = "Sync";
constexpr std::string_view kServerKey = "Server";
constexpr std::string_view kUserKey = "User";
constexpr std::string_view kAuthKey = "Auth";

} // namespace

std::optional<SyncAccount> LoadSyncAccount() {
    const std::optional<IniFile> file = ReadSettingsFile();
    if (!file) {
        return std::nullopt;
    }
    SyncAccount account;
    account.server = file->Value(kSection, kServerKey).value_or(u"");
    account.user = file->Value(kSection, kUserKey).value_or(u"");
    account.authToken = Utf16ToUtf8(file->Value(kSection, kAuthKey).value_or(u""));
    if (account.server.empty() || account.authToken.empty()) {
        return std::nullopt;
    }
    return account;
}

bool SaveSyncAccount(const SyncAccount& account) {
    return UpdateSettingsFile(
        [&account](IniFile& file) {
            file.SetValue(kSection, kServerKey, account.server);
            file.SetValue(kSection, kUserKey, account.user);
            file.SetValue(kSection, kAuthKey, Utf8ToUtf16(account.authToken));
        },
        true);
}

bool ForgetSyncAccount() {
    if (!LoadSyncAccount()) {
        return true;
    }
    return UpdateSettingsFile([](IniFile& file) {
        for (const std::string_view key : {kServerKey, kUserKey, kAuthKey}) {
            file.RemoveKey(kSection, key);
        }
    });
}

} // namespace qf
