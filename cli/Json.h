#pragma once

#include "model/FeedDate.h"
#include "platform/WString.h"

#include <nlohmann/json.hpp>

namespace qf::cli {

// Objects keep their fields in the order they were set, the order the commands document.
using Json = nlohmann::ordered_json;

// A text as a JSON string, or null for a null text.
Json TextOrNull(const WString& text);
// A date as its RFC 822 text, or "" when it is empty.
Json DateText(const FeedDate& date);
// The document on standard output, indented, followed by a newline.
void PrintJson(const Json& document);

} // namespace qf::cli
