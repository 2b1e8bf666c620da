#include "cli/Command.h"
#include "platform/Version.h"

#include <clocale>
#include <string>

namespace {

int RunCli(int argc, char** argv) {
    using namespace qf::cli;
    CLI::App app{std::string(qf::kProductName) +
                     " command-line companion: read, refresh and manage news feeds",
                 "quillfeed-cli"};
    app.set_version_flag("--version", std::string(qf::kProductName) + " " + qf::kProductVersion);
    app.require_subcommand(0, 1);

    auto commands = MakeCommands();
    std::vector<std::pair<CLI::App*, Command*>> chosen;
    for (auto& command : commands) {
        CLI::App* sub = app.add_subcommand();
        command->Setup(*sub);
        chosen.emplace_back(sub, command.get());
    }

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        const int code = app.exit(e);
        return code == 0 ? kExitOk : kExitUsage;
    }
    for (auto& [sub, command] : chosen) {
        if (sub->parsed()) {
            return command->Run();
        }
    }
    std::fputs(app.help().c_str(), stdout);
    return kExitOk;
}

} // namespace

// An exception that reaches here is a programming error or memory running out: ending at once,
// as the runtime does, is right.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) {
    std::setlocale(LC_ALL, "");
    return RunCli(argc, argv);
}
