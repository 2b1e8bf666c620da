#include "sync/GReaderJson.h"

#include "platform/Text.h"

#include <nlohmann/json.hpp>

namespace qf {

namespace {

using nlohmann::json;

constexpr std::string_view kReadStateSuffix = "/state/com.google/read";
constexpr std::string_view kLabelInfix = "/label/";

// Parses `text` and hands the object to `read`; a type mismatch deep inside is a malformed answer
// like any other, never an exception for the caller.
template <typename Read> bool ReadObject(std::string_view text, Read read) {
    try {
        const json document = json::parse(text, nullptr, false);
        return document.is_object() && read(document);
    } catch (const json::exception&) {
        return false;
    }
}

std::string StringMember(const json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

// The array member `name`; an empty array when it is missing, null when it is something else.
const json* ArrayMember(const json& object, const char* name) {
    static const json kNone = json::array();
    const auto found = object.find(name);
    if (found == object.end()) {
        return &kNone;
    }
    return found->is_array() ? &*found : nullptr;
}

// "user/<anyone>/state/com.google/read", whoever the user is written as.
bool IsReadState(std::string_view stream) {
    if (!stream.starts_with("user/") || !stream.ends_with(kReadStateSuffix)) {
        return false;
    }
    const auto owner = stream.substr(5, stream.size() - 5 - kReadStateSuffix.size());
    return !owner.empty() && owner.find('/') == std::string_view::npos;
}

// A subscription's category: its "label" member, else what follows "/label/" in its id.
std::string LabelOf(const json& category) {
    if (std::string label = StringMember(category, "label"); !label.empty()) {
        return label;
    }
    const std::string id = StringMember(category, "id");
    const auto at = id.find(kLabelInfix);
    return at == std::string::npos ? std::string() : id.substr(at + kLabelInfix.size());
}

std::string FirstHref(const json& item, const char* member) {
    const json* links = ArrayMember(item, member);
    return links != nullptr && !links->empty() ? StringMember(links->front(), "href")
                                               : std::string();
}

bool HasReadState(const json& item) {
    const json* categories = ArrayMember(item, "categories");
    if (categories == nullptr) {
        return false;
    }
    for (const json& category : *categories) {
        if (category.is_string() && IsReadState(category.get<std::string>())) {
            return true;
        }
    }
    return false;
}

// Continuations are opaque: a string, or a number on servers that page by offset.
std::string ContinuationOf(const json& page) {
    const auto found = page.find("continuation");
    if (found == page.end()) {
        return {};
    }
    if (found->is_string()) {
        return found->get<std::string>();
    }
    return found->is_number_integer() ? found->dump() : std::string();
}

} // namespace

bool ReadSubscriptionList(std::string_view text, std::vector<ServerSubscription>& subscriptions) {
    return ReadObject(text, [&](const json& document) {
        const json* list = ArrayMember(document, "subscriptions");
        if (list == nullptr) {
            return false;
        }
        for (const json& entry : *list) {
            ServerSubscription subscription;
            subscription.streamId = StringMember(entry, "id");
            subscription.url = Utf8ToUtf16(StringMember(entry, "url"));
            // Google's own lists named the feed only in its "feed/<address>" id.
            if (subscription.url.empty() && subscription.streamId.starts_with("feed/http")) {
                subscription.url = Utf8ToUtf16(std::string_view(subscription.streamId).substr(5));
            }
            if (subscription.streamId.empty() || subscription.url.empty()) {
                continue;
            }
            subscription.title = Utf8ToUtf16(StringMember(entry, "title"));
            const json* categories = ArrayMember(entry, "categories");
            if (categories != nullptr && !categories->empty()) {
                subscription.label = Utf8ToUtf16(LabelOf(categories->front()));
            }
            subscriptions.push_back(std::move(subscription));
        }
        return true;
    });
}

bool ReadItemIdPage(std::string_view text, std::vector<uint64_t>& ids, std::string& continuation) {
    return ReadObject(text, [&](const json& document) {
        const json* refs = ArrayMember(document, "itemRefs");
        if (refs == nullptr) {
            return false;
        }
        for (const json& ref : *refs) {
            if (uint64_t id = 0; ParseItemId(StringMember(ref, "id"), id)) {
                ids.push_back(id);
            }
        }
        continuation = ContinuationOf(document);
        return true;
    });
}

bool ReadItemContents(std::string_view text, std::vector<ServerItem>& items) {
    return ReadObject(text, [&](const json& document) {
        const json* list = ArrayMember(document, "items");
        if (list == nullptr) {
            return false;
        }
        for (const json& entry : *list) {
            ServerItem item;
            if (!ParseItemId(StringMember(entry, "id"), item.id)) {
                continue;
            }
            const auto origin = entry.find("origin");
            if (origin != entry.end()) {
                item.streamId = StringMember(*origin, "streamId");
            }
            std::string link = FirstHref(entry, "canonical");
            item.link = Utf8ToUtf16(link.empty() ? FirstHref(entry, "alternate") : link);
            item.read = HasReadState(entry);
            items.push_back(std::move(item));
        }
        return true;
    });
}

std::string JsonErrorMessage(std::string_view text) {
    std::string message;
    ReadObject(text, [&](const json& document) {
        message = StringMember(document, "error_message");
        return true;
    });
    return message;
}

} // namespace qf
