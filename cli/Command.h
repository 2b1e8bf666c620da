#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

namespace qf::cli {

// Exit codes shared by every command.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;

// One sub-command of quillfeed-cli: it declares its options on its own CLI11 sub-app and runs
// when that sub-app was chosen.
class Command {
public:
    virtual ~Command() = default;
    virtual void Setup(CLI::App& app) = 0;
    virtual int Run() = 0;
};

// Every command the program offers, in the order --help lists them.
std::vector<std::unique_ptr<Command>> MakeCommands();

} // namespace qf::cli
