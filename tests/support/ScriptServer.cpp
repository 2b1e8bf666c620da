#include "support/ScriptServer.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace qf::test {

namespace {

// The distribution's interpreter (the set-up scripts install it) when there is one: a version
// manager's shim found first in PATH can take a second to start, and every test starts a server.
std::string Interpreter() {
    constexpr char kSystemPython[] = "/usr/bin/python3";
    return ::access(kSystemPython, X_OK) == 0 ? kSystemPython : "python3";
}

} // namespace

ScriptServer::ScriptServer(const std::string& script, const std::vector<std::string>& arguments) {
    // A server that died must fail the test, not kill the test program on the next write.
    std::signal(SIGPIPE, SIG_IGN);
    int input[2];
    int output[2];
    if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0) {
        throw std::runtime_error("cannot make pipes for the test server");
    }
    const auto path = std::filesystem::path(QF_SOURCE_DIR) / "tests" / "support" / script;
    std::vector<std::string> words{Interpreter(), path.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (auto& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    const int spawned =
        posix_spawnp(&pid_, words[0].c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(input[0]);
    ::close(output[1]);
    toServer_ = input[1];
    fromServer_ = output[0];
    if (spawned != 0) {
        throw std::runtime_error("cannot start python3 for the test server");
    }
    for (std::string line = readLine(); line != "ready"; line = readLine()) {
        const auto space = line.find(' ');
        ports_[line.substr(0, space)] = static_cast<uint16_t>(std::stoi(line.substr(space + 1)));
    }
}

ScriptServer::~ScriptServer() {
    // The end of its input ends the server.
    ::close(toServer_);
    ::close(fromServer_);
    if (pid_ > 0) {
        ::waitpid(pid_, nullptr, 0);
    }
}

std::string ScriptServer::readLine() {
    for (;;) {
        if (const auto end = pending_.find('\n'); end != std::string::npos) {
            std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            return line;
        }
        char chunk[4096];
        const ssize_t got = ::read(fromServer_, chunk, sizeof chunk);
        if (got <= 0) {
            throw std::runtime_error("the test server ended");
        }
        pending_.append(chunk, static_cast<std::size_t>(got));
    }
}

std::string ScriptServer::command(const std::string& line) {
    const std::string text = line + "\n";
    if (::write(toServer_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        throw std::runtime_error("cannot talk to the test server");
    }
    return readLine();
}

std::string Hex(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (const char c : bytes) {
        hex += kDigits[static_cast<unsigned char>(c) >> 4];
        hex += kDigits[static_cast<unsigned char>(c) & 0xF];
    }
    return hex;
}

std::string FromHex(std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16));
    }
    return bytes;
}

} // namespace qf::test
