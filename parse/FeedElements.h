#pragma once

#include "model/FeedDate.h"
#include "parse/XmlDocument.h"
#include "platform/Text.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace qf {

class Channel;
class NewsItem;

// Pieces shared by the feed readers and the read-state writer.

// The attribute that carries a story's read state in the cached feed, and its two values.
inline constexpr std::u16string_view kReadStateAttribute = u"qf_wasRead";
inline constexpr std::u16string_view kReadValue = u"yes";
inline constexpr std::u16string_view kUnreadValue = u"no";

// Element names are matched against small tables of the names a reader acts on.
template <typename Field> using FieldName = std::pair<std::u16string_view, Field>;

// The field whose name equals `name` ignoring case; `none` when no name does.
template <typename Field, std::size_t N>
Field FieldOf(std::u16string_view name, const std::array<FieldName<Field>, N>& table, Field none) {
    for (const auto& [candidate, field] : table) {
        if (EqualsIgnoreCase(name, candidate)) {
            return field;
        }
    }
    return none;
}

// A feed date; empty when the text is not one.
FeedDate DateOf(std::u16string_view text);

// Sets the story's read flag from the element's qf_wasRead attribute when it has one: read
// exactly when the value is "yes" in any case.
void ReadStateOf(XmlNode element, NewsItem& item);

// The `href` of an Atom link whose `type` is "text/html" in any case; none for other links.
std::optional<std::u16string> HtmlLinkHref(XmlNode link);

// Points the channel's logo at `url` and names its cached copy after the channel and the url.
void SetImageAddress(Channel& channel, std::u16string_view url);

} // namespace qf
