#include "cli/Commands.h"

namespace qf::cli {

std::vector<std::unique_ptr<Command>> MakeCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(MakeListCommand());
    commands.push_back(MakeAddCommand());
    commands.push_back(MakeExportCommand());
    commands.push_back(MakeRestoreCommand());
    commands.push_back(MakeImportCommand());
    commands.push_back(MakeParseCommand());
    commands.push_back(MakeShowCommand());
    commands.push_back(MakeMarkCommand());
    commands.push_back(MakeRemoveCommand());
    commands.push_back(MakeRefreshCommand());
    commands.push_back(MakePageCommand());
    commands.push_back(MakeAccountCommand());
    commands.push_back(MakeSyncCommand());
    return commands;
}

} // namespace qf::cli
