#pragma once

#include "cli/Command.h"

#include <string>

namespace qf::cli {

// `parse FILE [--json]`: reads a feed file as a refresh reads a fresh download, into a new
// channel, and prints what it found. Needs no store.
class ParseCommand : public Command {
public:
    void Setup(CLI::App& app) override;
    int Run() override;

private:
    std::string file_;
    bool json_ = false;
};

} // namespace qf::cli
