#include "support/ChildProcess.h"

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qf::test {

ChildProcess::ChildProcess(const std::string& path, const std::vector<std::string>& arguments,
                           const std::string& input) {
    // The output goes to files rather than pipes, so that a program writing much to both streams
    // never blocks on a pipe that nobody reads yet.
    const std::string outPath = (scratch_ / "out").string();
    const std::string errPath = (scratch_ / "err").string();
    const std::string inPath = (scratch_ / "in").string();
    WriteFileBytes(inPath, input);
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(path.c_str()));
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    pid_ = ::fork();
    if (pid_ == 0) {
        const int in = ::open(inPath.c_str(), O_RDONLY);
        const int out = ::open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int err = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (in < 0 || out < 0 || err < 0 || ::dup2(in, 0) < 0 || ::dup2(out, 1) < 0 ||
            ::dup2(err, 2) < 0) {
            _exit(127);
        }
        ::execv(path.c_str(), argv.data());
        _exit(127);
    }
}

ChildProcess::~ChildProcess() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }
}

void ChildProcess::Signal(int signal) const {
    if (pid_ > 0) {
        ::kill(pid_, signal);
    }
}

ProgramResult ChildProcess::Wait() {
    ProgramResult result;
    int status = 0;
    if (pid_ > 0 && ::waitpid(pid_, &status, 0) == pid_ && WIFEXITED(status)) {
        result.exitCode = WEXITSTATUS(status);
    }
    pid_ = -1;
    result.out = ReadFileBytes(scratch_ / "out");
    result.err = ReadFileBytes(scratch_ / "err");
    return result;
}

} // namespace qf::test
