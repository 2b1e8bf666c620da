#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace qf {

class HttpSession;

// One request to a Google Reader API server.
struct GReaderRequest {
    // The API's base address as the user gave it.
    std::u16string_view server;
    // The path below it, from "/", query included.
    std::string_view target;
    // The Authorization header's value; none when empty.
    std::string_view authorization;
    // A POST's form body; the request is a GET without one.
    const std::string* form = nullptr;
};

// What came back: an answer with its status and body, or the reason none came.
struct GReaderAnswer {
    bool arrived = false;
    // No answer because the stop check asked to stop.
    bool stopped = false;
    int32_t status = 0;
    std::string body;
    std::u16string failure;

    bool succeeded() const { return arrived && status >= 200 && status < 300; }
};

// Sends the request over `session` (null when none could be opened) and reads the whole answer,
// refusing one too large to be a real answer. `stop` is asked before and during the request.
GReaderAnswer SendGReaderRequest(HttpSession* session, const GReaderRequest& request,
                                 const std::function<bool()>& stop);

} // namespace qf
