#include "support/TestServer.h"

#include "platform/Text.h"

#include <csignal>
#include <fcntl.h>
#include <netinet/in.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace qf::test {

namespace {

const std::filesystem::path kScript =
    std::filesystem::path(QF_SOURCE_DIR) / "tests" / "support" / "http_test_server.py";

// The distribution's interpreter (the set-up scripts install it) when there is one: a version
// manager's shim found first in PATH can take a second to start, and every test starts a server.
std::string Interpreter() {
    constexpr char kSystemPython[] = "/usr/bin/python3";
    return ::access(kSystemPython, X_OK) == 0 ? kSystemPython : "python3";
}

// Every value crosses to the server as hexadecimal digits, so that any bytes may be sent.
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

} // namespace

TestServer::TestServer(const std::vector<TlsListener>& tls) {
    // A server that died must fail the test, not kill the test program on the next write.
    std::signal(SIGPIPE, SIG_IGN);
    int input[2];
    int output[2];
    if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0) {
        throw std::runtime_error("cannot make pipes for the test server");
    }
    std::vector<std::string> arguments{Interpreter(), kScript.string()};
    for (const auto& listener : tls) {
        arguments.push_back(listener.name + "=" + listener.certificate.string() + ":" +
                            listener.key.string());
    }
    std::vector<char*> argv;
    for (auto& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    const int spawned =
        posix_spawnp(&pid_, arguments[0].c_str(), &actions, nullptr, argv.data(), environ);
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

TestServer::~TestServer() {
    // The end of its input ends the server.
    ::close(toServer_);
    ::close(fromServer_);
    if (pid_ > 0) {
        ::waitpid(pid_, nullptr, 0);
    }
}

std::string TestServer::readLine() {
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

std::string TestServer::command(const std::string& line) {
    const std::string text = line + "\n";
    if (::write(toServer_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        throw std::runtime_error("cannot talk to the test server");
    }
    return readLine();
}

void TestServer::addRoute(const Route& route) {
    constexpr const char* kModes[] = {"fixed", "close", "endless", "silent"};
    std::string line =
        "route path=" + Hex(route.path) + " status=" + Hex(std::to_string(route.status)) +
        " mode=" + Hex(kModes[static_cast<int>(route.mode)]) + " body=" + Hex(route.body);
    for (const auto& [name, value] : route.headers) {
        line += " header=" + Hex(name + ":" + value);
    }
    if (!route.basicAuth.empty()) {
        line += " auth=" + Hex(route.basicAuth);
    }
    line += " gzip=" + Hex(route.gzip ? "1" : "0") + " delay=" + Hex(std::to_string(route.delay));
    command(line);
}

int TestServer::hits(const std::string& path) {
    return std::stoi(command("hits path=" + Hex(path)));
}

bool TestServer::awaitHits(const std::string& path, int count) {
    return std::stoi(command("await path=" + Hex(path) + " count=" + Hex(std::to_string(count)))) >=
           count;
}

int TestServer::connections() {
    return std::stoi(command("connections"));
}

std::string TestServer::requestHead(const std::string& path) {
    return FromHex(command("request path=" + Hex(path)));
}

void TestServer::listen(const std::string& address) {
    ports_[address] = static_cast<uint16_t>(std::stoi(command("listen address=" + Hex(address))));
}

int TestServer::peakConnections(const std::string& address) {
    return std::stoi(command("peak address=" + Hex(address)));
}

std::u16string TestServer::url(const std::string& path, const std::string& listener) const {
    const bool plain = listener == "http" || listener.starts_with("127.");
    const std::string host = listener.starts_with("127.") ? listener : "127.0.0.1";
    return Utf8ToUtf16((plain ? "http://" : "https://") + host + ":" +
                       std::to_string(port(listener)) + path);
}

uint16_t ClosedPort() {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
    ::close(fd);
    return ntohs(address.sin_port);
}

} // namespace qf::test
