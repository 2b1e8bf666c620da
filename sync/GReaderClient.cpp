#include "sync/GReaderClient.h"

#include "net/HttpSession.h"

#include <utility>

namespace qf {

bool ParseItemId(std::string_view /*text*/, uint64_t& /*id*/) {
    return false;
}

std::string LongItemId(uint64_t /*id*/) {
    return {};
}

GReaderClient::GReaderClient(std::u16string server, std::string authToken, StopCheck stop)
    : server_(std::move(server)), authToken_(std::move(authToken)), stop_(std::move(stop)) {}

GReaderClient::~GReaderClient() = default;

LoginResult GReaderClient::Login(std::u16string_view /*server*/, std::u16string_view /*user*/,
                                 std::u16string_view /*password*/, const StopCheck& /*stop*/) {
    return {false, {}, u"not written yet"};
}

bool GReaderClient::ListSubscriptions(std::vector<ServerSubscription>& /*subscriptions*/) {
    return false;
}
bool GReaderClient::Subscribe(std::u16string_view /*url*/, std::u16string_view /*title*/,
                              std::u16string_view /*label*/) {
    return false;
}
bool GReaderClient::Unsubscribe(std::string_view /*streamId*/) {
    return false;
}
bool GReaderClient::ListItemIds(bool /*unreadOnly*/, std::vector<uint64_t>& /*ids*/) {
    return false;
}
bool GReaderClient::FetchItems(std::span<const uint64_t> /*ids*/,
                               std::vector<ServerItem>& /*items*/) {
    return false;
}
bool GReaderClient::MarkItems(std::span<const uint64_t> /*ids*/, bool /*read*/) {
    return false;
}

} // namespace qf
