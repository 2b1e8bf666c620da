#include "support/RunProgram.h"

#include "support/TestEnv.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qf::test {

ProgramResult RunProgram(const std::string& path, const std::vector<std::string>& arguments) {
    // The output goes to files rather than pipes, so that a program writing much to both streams
    // never blocks on a pipe that nobody reads yet.
    const TempDir scratch;
    const std::string outPath = (scratch / "out").string();
    const std::string errPath = (scratch / "err").string();
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(path.c_str()));
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);

    ProgramResult result;
    const pid_t child = ::fork();
    if (child < 0) {
        return result;
    }
    if (child == 0) {
        const int in = ::open("/dev/null", O_RDONLY);
        const int out = ::open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int err = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (in < 0 || out < 0 || err < 0 || ::dup2(in, 0) < 0 || ::dup2(out, 1) < 0 ||
            ::dup2(err, 2) < 0) {
            _exit(127);
        }
        ::execv(path.c_str(), argv.data());
        _exit(127);
    }
    int status = 0;
    if (::waitpid(child, &status, 0) == child && WIFEXITED(status)) {
        result.exitCode = WEXITSTATUS(status);
    }
    result.out = ReadFileBytes(scratch / "out");
    result.err = ReadFileBytes(scratch / "err");
    return result;
}

} // namespace qf::test
