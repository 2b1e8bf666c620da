#include "support/TestServer.h"

#include "platform/Text.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace qf::test {

namespace {

std::vector<std::string> ListenerArguments(const std::vector<TlsListener>& tls) {
    std::vector<std::string> arguments;
    for (const auto& listener : tls) {
        arguments.push_back(listener.name + "=" + listener.certificate.string() + ":" +
                            listener.key.string());
    }
    return arguments;
}

} // namespace

TestServer::TestServer(const std::vector<TlsListener>& tls)
    : process_("http_test_server.py", ListenerArguments(tls)) {}

TestServer::~TestServer() = default;

std::string TestServer::command(const std::string& line) {
    return process_.command(line);
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
    process_.addPort(address,
                     static_cast<uint16_t>(std::stoi(command("listen address=" + Hex(address)))));
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
