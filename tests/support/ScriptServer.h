#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace qf::test {

// One of the Python servers in tests/support, run in a child process: it prints "NAME PORT" per
// listener and "ready", then answers each command line with one line. It stops with the object.
class ScriptServer {
public:
    // `script` is the file name in tests/support; `arguments` follow it.
    ScriptServer(const std::string& script, const std::vector<std::string>& arguments);
    ~ScriptServer();
    ScriptServer(const ScriptServer&) = delete;
    ScriptServer& operator=(const ScriptServer&) = delete;

    std::string command(const std::string& line);
    uint16_t port(const std::string& listener) const { return ports_.at(listener); }
    void addPort(const std::string& listener, uint16_t port) { ports_[listener] = port; }

private:
    std::string readLine();

    pid_t pid_ = -1;
    int toServer_ = -1;
    int fromServer_ = -1;
    std::string pending_;
    std::map<std::string, uint16_t> ports_;
};

// Every value crosses to the servers as hexadecimal digits, so that any bytes may be sent.
std::string Hex(std::string_view bytes);
std::string FromHex(std::string_view hex);

} // namespace qf::test
