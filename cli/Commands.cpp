#include "cli/Commands.h"

namespace qf::cli {

std::vector<std::unique_ptr<Command>> MakeCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(MakeListCommand());
    commands.push_back(MakeAddCommand());
    commands.push_back(MakeExportCommand());
    commands.push_back(MakeImportCommand());
    return commands;
}

} // namespace qf::cli
