#pragma once

#include <string>
#include <vector>

namespace qf::test {

// What a finished program left: its exit status (-1 when it did not exit normally) and
// everything it wrote to standard output and standard error.
struct ProgramResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

// Runs a program with the arguments given and this process's environment, standard input
// empty, and waits for it to end.
ProgramResult RunProgram(const std::string& path, const std::vector<std::string>& arguments);

} // namespace qf::test
