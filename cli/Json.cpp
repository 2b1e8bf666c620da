#include "cli/Json.h"

#include "cli/Session.h"

namespace qf::cli {

Json TextOrNull(const WString& text) {
    return text.isNull() ? Json(nullptr) : Json(text.toUtf8());
}

Json DateText(const FeedDate& date) {
    std::string text;
    date.FormatRfc822(text);
    return text;
}

void PrintJson(const Json& document) {
    PrintLine(document.dump(2, ' ', false, Json::error_handler_t::replace));
}

} // namespace qf::cli
