#pragma once

#include "cli/Command.h"

#include <memory>

namespace qf::cli {

// One factory per command, each in the command's own file.
std::unique_ptr<Command> MakeListCommand();
std::unique_ptr<Command> MakeAddCommand();
std::unique_ptr<Command> MakeExportCommand();
std::unique_ptr<Command> MakeImportCommand();
std::unique_ptr<Command> MakeParseCommand();
std::unique_ptr<Command> MakeShowCommand();
std::unique_ptr<Command> MakeMarkCommand();
std::unique_ptr<Command> MakeRemoveCommand();
std::unique_ptr<Command> MakeRestoreCommand();
std::unique_ptr<Command> MakeRefreshCommand();
std::unique_ptr<Command> MakePageCommand();
std::unique_ptr<Command> MakeAccountCommand();
std::unique_ptr<Command> MakeSyncCommand();

} // namespace qf::cli
