#include "cli/Commands.h"
#include "cli/Session.h"
#include "platform/Text.h"
#include "sync/GReaderClient.h"
#include "sync/SyncAccount.h"

#include <iostream>
#include <string>

namespace qf::cli {

namespace {

// The sync account: log in (the password comes on standard input, so it shows in no process
// list), log out, or show who is logged in where.
class AccountCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("account");
        app.description("Show the sync account, or log in to a Google Reader API server or out");
        login_ = app.add_subcommand("login", "Log in; the password is read from standard input");
        login_->add_option("URL", server_, "The server's API address")->required();
        login_->add_option("USER", user_, "The user name")->required();
        logout_ = app.add_subcommand("logout", "Forget the account");
        app.require_subcommand(0, 1);
    }

    int Run() override {
        if (login_->parsed()) {
            return LogIn();
        }
        if (logout_->parsed()) {
            if (!ForgetSyncAccount()) {
                PrintError(u"Failed to save the settings.");
                return kExitFailed;
            }
            return kExitOk;
        }
        const std::optional<SyncAccount> account = LoadSyncAccount();
        if (!account) {
            PrintError(u"No sync account; log in with: quillfeed-cli account login URL USER");
            return kExitFailed;
        }
        PrintLine("Server: " + Utf16ToUtf8(account->server));
        PrintLine("User: " + Utf16ToUtf8(account->user));
        return kExitOk;
    }

private:
    int LogIn() const {
        std::string password;
        std::getline(std::cin, password);
        if (!password.empty() && password.back() == '\r') {
            password.pop_back();
        }
        const std::u16string server = Utf8ToUtf16(server_);
        const std::u16string user = Utf8ToUtf16(user_);
        const LoginResult result = GReaderClient::Login(server, user, Utf8ToUtf16(password));
        if (!result.ok) {
            PrintError(u"Login failed: " + result.reason);
            return kExitFailed;
        }
        if (!SaveSyncAccount({server, user, result.authToken})) {
            PrintError(u"Failed to save the settings.");
            return kExitFailed;
        }
        PrintLine("Logged in as " + user_ + ".");
        return kExitOk;
    }

    CLI::App* login_ = nullptr;
    CLI::App* logout_ = nullptr;
    std::string server_;
    std::string user_;
};

} // namespace

std::unique_ptr<Command> MakeAccountCommand() {
    return std::make_unique<AccountCommand>();
}

} // namespace qf::cli
