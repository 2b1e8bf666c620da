#pragma once

#include "platform/Text.h"
#include "platform/WString.h"

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

// Markup shared by the generated pages. Users and saved pages have always seen exactly these
// texts, so they are spelled out once here and never reformatted.
namespace qf::markup {

inline constexpr std::u16string_view kHtmlOpen = u"<html>";
inline constexpr std::u16string_view kCharsetOpen =
    u"<meta http-equiv=\"content-type\" content=\"text/html; charset=";
inline constexpr std::u16string_view kCharsetClose = u"\">";
inline constexpr std::u16string_view kBodyOpen =
    u"<body bgColor=\"#ffffff\" leftMargin=\"2\" topMargin=\"2\" rightMargin=\"2\" "
    u"bottomMargin=\"2\">";
inline constexpr std::u16string_view kBannerTitleOpen = u"<b><font color=\"#6898C8\">";
inline constexpr std::u16string_view kBannerTitleClose = u"</font></b>";
inline constexpr std::u16string_view kFileUrlScheme = u"file://";
inline constexpr std::u16string_view kPageClose = u"</table></body></html>";

// Appends each piece in turn, keeping the text below `capacity` units as the page buffers do.
inline void AppendPieces(std::u16string& text, std::initializer_list<std::u16string_view> pieces,
                         std::size_t capacity) {
    for (std::u16string_view piece : pieces) {
        BoundedAppend(text, piece, capacity);
    }
}

// The meta line naming the feed's character set; nothing when the feed named none.
inline void AppendCharset(std::u16string& text, const WString& charset, std::size_t capacity) {
    if (!charset.isNull()) {
        AppendPieces(text, {kCharsetOpen, charset.view(), kCharsetClose}, capacity);
    }
}

} // namespace qf::markup
