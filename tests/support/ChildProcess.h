#pragma once

#include "support/TestEnv.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace qf::test {

// What a finished program left: its exit status (-1 when it did not exit normally) and
// everything it wrote to standard output and standard error.
struct ProgramResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

// A program started in the background with this process's environment, `input` as its standard
// input and its output kept in files, for tests that act on it while it runs.
class ChildProcess {
public:
    ChildProcess(const std::string& path, const std::vector<std::string>& arguments,
                 const std::string& input = {});
    // Kills the program when it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void Signal(int signal) const;
    // Waits for the program to end and collects what it left.
    ProgramResult Wait();

private:
    TempDir scratch_;
    pid_t pid_ = -1;
};

} // namespace qf::test
