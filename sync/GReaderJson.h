#pragma once

#include "sync/GReaderClient.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qf {

// Readers of the API's JSON answers. Each answers false when the text is not a JSON object of the
// expected shape (a server that does not know a path may answer 200 with "[]"); entries that lack
// what the reader needs are skipped.

// subscription/list: appends to `subscriptions`.
bool ReadSubscriptionList(std::string_view text, std::vector<ServerSubscription>& subscriptions);
// One page of stream/items/ids: appends to `ids`; `continuation` is what asks for the next page,
// empty on the last one.
bool ReadItemIdPage(std::string_view text, std::vector<uint64_t>& ids, std::string& continuation);
// stream/items/contents: appends to `items`.
bool ReadItemContents(std::string_view text, std::vector<ServerItem>& items);
// The "error_message" member of a JSON object; empty when the text has none.
std::string JsonErrorMessage(std::string_view text);

} // namespace qf
