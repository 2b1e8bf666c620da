#pragma once

#include <string>
#include <vector>

namespace qf::test {

// What one run of the built quillfeed-cli left behind.
struct CliResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

// Runs `program` (the built quillfeed-cli: QF_CLI_PATH) with `args` in the test's environment
// and waits for it.
CliResult RunProgram(const std::string& program, const std::vector<std::string>& args);

} // namespace qf::test
