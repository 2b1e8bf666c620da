#include "support/GReaderServer.h"

#include "platform/Text.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace qf::test {

namespace {

std::vector<std::string> Words(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

} // namespace

GReaderServer::GReaderServer() : process_("greader_test_server.py", {}) {}

std::string GReaderServer::command(const std::string& line) {
    std::string answer = process_.command(line);
    if (answer.starts_with("error") || answer == "unknown command") {
        throw std::runtime_error("the Google Reader test server refused \"" + line +
                                 "\": " + answer);
    }
    return answer;
}

std::string GReaderServer::call(const std::string& name,
                                const std::vector<std::pair<std::string, std::string>>& fields) {
    std::string line = name;
    for (const auto& [key, value] : fields) {
        line += " " + key + "=" + Hex(value);
    }
    return command(line);
}

void GReaderServer::setDialect(const GReaderDialect& dialect) {
    call("dialect", {{"ids", dialect.ids},
                     {"streams", dialect.streams},
                     {"continuation", dialect.continuation},
                     {"labels", dialect.labels}});
}

void GReaderServer::addUser(const std::string& name, const std::string& password) {
    call("user", {{"name", name}, {"password", password}});
}

int GReaderServer::addFeed(const std::string& url, const std::string& title,
                           const std::string& label) {
    std::vector<std::pair<std::string, std::string>> fields{{"url", url}, {"title", title}};
    if (!label.empty()) {
        fields.emplace_back("label", label);
    }
    return std::stoi(call("feed", fields));
}

std::string GReaderServer::addItem(const std::string& feedUrl, const std::string& link, bool read,
                                   const std::string& id) {
    std::vector<std::pair<std::string, std::string>> fields{
        {"feed", feedUrl}, {"link", link}, {"title", link}, {"read", read ? "1" : "0"}};
    if (!id.empty()) {
        fields.emplace_back("id", id);
    }
    return call("item", fields);
}

std::pair<std::string, std::string> GReaderServer::addItems(const std::string& feedUrl, int count,
                                                            bool read) {
    const std::vector<std::string> ids = Words(
        call("items",
             {{"feed", feedUrl}, {"count", std::to_string(count)}, {"read", read ? "1" : "0"}}));
    return ids.size() == 2 ? std::pair{ids[0], ids[1]} : std::pair<std::string, std::string>{};
}

void GReaderServer::unsubscribe(const std::string& url) {
    call("unsubscribe", {{"url", url}});
}

std::vector<GReaderFeed> GReaderServer::subscriptions() {
    std::vector<GReaderFeed> feeds;
    for (const std::string& word : Words(call("subscriptions", {}))) {
        std::vector<std::string> parts;
        std::istringstream stream(word);
        for (std::string part; std::getline(stream, part, ',');) {
            parts.push_back(FromHex(part));
        }
        parts.resize(std::max<std::size_t>(parts.size(), 2));
        feeds.push_back({parts[0], parts[1], {parts.begin() + 2, parts.end()}});
    }
    return feeds;
}

std::vector<std::string> GReaderServer::readIds() {
    return Words(call("read", {}));
}

std::string GReaderServer::state(const std::string& link) {
    return call("state", {{"link", link}});
}

void GReaderServer::expire(const std::string& what) {
    call("expire", {{"what", what}});
}

void GReaderServer::fail(int count, int status) {
    call("fail", {{"count", std::to_string(count)}, {"status", std::to_string(status)}});
}

void GReaderServer::hang(int count) {
    call("hang", {{"count", std::to_string(count)}});
}

int GReaderServer::hits(const std::string& path) {
    return std::stoi(call("hits", {{"path", path}}));
}

std::u16string GReaderServer::url(const std::string& path) const {
    return Utf8ToUtf16("http://127.0.0.1:" + std::to_string(process_.port("http")) + path);
}

} // namespace qf::test
