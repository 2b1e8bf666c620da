#include "cli/Commands.h"
#include "cli/ParseCommand.h"

namespace qf::cli {

std::vector<std::unique_ptr<Command>> MakeCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(MakeListCommand());
    commands.push_back(MakeAddCommand());
    commands.push_back(MakeExportCommand());
    commands.push_back(MakeImportCommand());
    commands.push_back(std::make_unique<ParseCommand>());
    commands.push_back(MakeRefreshCommand());
    return commands;
}

} // namespace qf::cli
