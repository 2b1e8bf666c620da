#include "cli/Command.h"

namespace qf::cli {

std::vector<std::unique_ptr<Command>> MakeCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    return commands;
}

} // namespace qf::cli
