#include "support/CliRun.h"

#include "support/TestEnv.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace qf::test {

CliResult RunProgram(const std::string& program, const std::vector<std::string>& args) {
    const TempDir outputs;
    const std::string outPath = (outputs / "out").string();
    const std::string errPath = (outputs / "err").string();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT, 0600);

    std::vector<std::string> words{program};
    words.insert(words.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);

    CliResult result;
    pid_t child = 0;
    int status = 0;
    if (posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ) == 0 &&
        waitpid(child, &status, 0) == child && WIFEXITED(status)) {
        result.exitCode = WEXITSTATUS(status);
    }
    posix_spawn_file_actions_destroy(&actions);
    result.out = ReadFileBytes(outputs / "out");
    result.err = ReadFileBytes(outputs / "err");
    return result;
}

} // namespace qf::test
