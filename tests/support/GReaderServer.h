#pragma once

#include "support/ScriptServer.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qf::test {

// A subscription as the server keeps it.
struct GReaderFeed {
    std::string url;
    std::string title;
    std::vector<std::string> labels;
};

// How the server writes ids, streams, continuations and labels (see greader_notes.md).
struct GReaderDialect {
    std::string ids = "mixed";
    std::string streams = "number";
    std::string continuation = "numeric";
    std::string labels = "dash";
};

// A Google Reader API server on 127.0.0.1 (tests/support/greader_test_server.py in a child
// process) that keeps its users, subscriptions and items in memory. The helpers act for the
// first user added; it stops with the object.
class GReaderServer {
public:
    GReaderServer();

    // One raw command line; its one-line answer. Throws when the server answers "error ...".
    std::string command(const std::string& line);

    void setDialect(const GReaderDialect& dialect);
    void addUser(const std::string& name, const std::string& password);
    // The subscription's number.
    int addFeed(const std::string& url, const std::string& title, const std::string& label = {});
    // The item's decimal id; `id` (decimal) chooses it, else the server numbers it.
    std::string addItem(const std::string& feedUrl, const std::string& link, bool read,
                        const std::string& id = {});
    // The first and the last decimal id of `count` new items of the feed.
    std::pair<std::string, std::string> addItems(const std::string& feedUrl, int count, bool read);
    // Removes a subscription as another device would.
    void unsubscribe(const std::string& url);
    std::vector<GReaderFeed> subscriptions();
    // The decimal ids of the read items.
    std::vector<std::string> readIds();
    // "read", "unread" or "missing".
    std::string state(const std::string& link);
    // "token": the edit tokens stop being accepted; "auth": the logins do.
    void expire(const std::string& what);
    // The next `count` requests answer `status`, or are read and never answered.
    void fail(int count, int status);
    void hang(int count);
    int hits(const std::string& path);

    // "http://127.0.0.1:PORT" followed by `path`.
    std::u16string url(const std::string& path = {}) const;

private:
    std::string call(const std::string& name,
                     const std::vector<std::pair<std::string, std::string>>& fields);

    ScriptServer process_;
};

} // namespace qf::test
