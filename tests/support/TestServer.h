#pragma once

#include "support/ScriptServer.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace qf::test {

// What the server answers on one path.
struct Route {
    enum class Body {
        Fixed,      // sent with a Content-Length
        UntilClose, // no Content-Length; the connection closes after the body
        Endless,    // no Content-Length; blocks keep coming until the client goes away
        Silent,     // the request is read and never answered
    };

    std::string path{};
    int status = 200;
    std::string body{};
    std::vector<std::pair<std::string, std::string>> headers{};
    Body mode = Body::Fixed;
    // "user:password" that the request must carry as Basic credentials; empty: none needed.
    std::string basicAuth{};
    // Compress the body when the request asks for gzip.
    bool gzip = false;
    // Seconds to wait before answering.
    double delay = 0;
};

// An HTTPS listener's name and the certificate it shows.
struct TlsListener {
    std::string name;
    std::filesystem::path certificate;
    std::filesystem::path key;
};

// A real HTTP server on 127.0.0.1 (tests/support/http_test_server.py in a child process), with a
// plain listener named "http" and one HTTPS listener per certificate. It stops with the object.
class TestServer {
public:
    explicit TestServer(const std::vector<TlsListener>& tls = {});
    ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    void addRoute(const Route& route);
    int hits(const std::string& path);
    // Waits until `path` had `count` requests (at most 30 s); false when it did not.
    bool awaitHits(const std::string& path, int count);
    int connections();
    // The raw head (request line and headers) of the last request to `path`.
    std::string requestHead(const std::string& path);

    // Starts another plain listener on `address` (127.0.0.x), which then names it.
    void listen(const std::string& address);
    // The most connections `address` had open at the same time.
    int peakConnections(const std::string& address);

    uint16_t port(const std::string& listener = "http") const { return process_.port(listener); }
    // "http://127.0.0.1:PORT/path", or https for an HTTPS listener; a listener named by its
    // address is reached there.
    std::u16string url(const std::string& path, const std::string& listener = "http") const;

private:
    std::string command(const std::string& line);

    ScriptServer process_;
};

// A port on 127.0.0.1 where nothing listens.
uint16_t ClosedPort();

} // namespace qf::test
