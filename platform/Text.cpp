#include "platform/Text.h"

#include <algorithm>
#include <limits>

namespace qf {

std::u16string BoundedCopy(std::u16string_view source, std::size_t capacity) {
    return std::u16string(source.substr(0, std::min(source.size(), capacity)));
}

void BoundedAppend(std::u16string& text, std::u16string_view source, std::size_t capacity) {
    if (capacity == 0 || text.size() >= capacity - 1) {
        return;
    }
    const std::size_t room = capacity - 1 - text.size();
    text.append(source.substr(0, std::min(source.size(), room)));
}

namespace {

bool IsSpace(char32_t c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

template <typename CharT> int32_t ParseLeadingDecimal(std::basic_string_view<CharT> text) {
    std::size_t i = 0;
    while (i < text.size() && IsSpace(static_cast<char32_t>(text[i]))) {
        ++i;
    }
    bool negative = false;
    if (i < text.size() && (text[i] == CharT('+') || text[i] == CharT('-'))) {
        negative = text[i] == CharT('-');
        ++i;
    }
    constexpr int64_t kLimit = int64_t{std::numeric_limits<int32_t>::max()} + 1;
    int64_t value = 0;
    for (; i < text.size() && text[i] >= CharT('0') && text[i] <= CharT('9'); ++i) {
        value = std::min<int64_t>(value * 10 + (text[i] - CharT('0')), kLimit);
    }
    if (negative) {
        return static_cast<int32_t>(-value);
    }
    return static_cast<int32_t>(std::min<int64_t>(value, kLimit - 1));
}

// Letters whose small form follows the capital directly (U+0100 Ā, U+0101 ā, ...).
bool InAlternatingRange(char16_t c) {
    return (c >= 0x0100 && c <= 0x012F) || (c >= 0x0132 && c <= 0x0137) ||
           (c >= 0x014A && c <= 0x0177) || (c >= 0x0182 && c <= 0x0185) ||
           (c >= 0x01A0 && c <= 0x01A5) || (c >= 0x01DE && c <= 0x01EF) ||
           (c >= 0x01F8 && c <= 0x021F) || (c >= 0x0222 && c <= 0x0233) ||
           (c >= 0x03D8 && c <= 0x03EF) || (c >= 0x0460 && c <= 0x0481) ||
           (c >= 0x048A && c <= 0x04BF) || (c >= 0x04D0 && c <= 0x052F) ||
           (c >= 0x1E00 && c <= 0x1E95) || (c >= 0x1EA0 && c <= 0x1EFF);
}

// Same pattern, but the capital sits on the odd code point (U+0139 Ĺ, U+013A ĺ, ...).
bool InOddAlternatingRange(char16_t c) {
    return (c >= 0x0139 && c <= 0x0148) || (c >= 0x0179 && c <= 0x017E) ||
           (c >= 0x01CD && c <= 0x01DC) || (c >= 0x04C1 && c <= 0x04CE);
}

} // namespace

int32_t LeadingDecimal(std::u16string_view text) {
    return ParseLeadingDecimal(text);
}
int32_t LeadingDecimal(std::string_view text) {
    return ParseLeadingDecimal(text);
}

char16_t FoldCase(char16_t c) {
    if (c < 0x80) {
        return (c >= 'A' && c <= 'Z') ? static_cast<char16_t>(c + 32) : c;
    }
    if ((c >= 0x00C0 && c <= 0x00DE && c != 0x00D7) || // Latin-1 capitals
        (c >= 0x0391 && c <= 0x03AB && c != 0x03A2) || // Greek capitals
        (c >= 0x0410 && c <= 0x042F) ||                // Cyrillic А..Я
        (c >= 0xFF21 && c <= 0xFF3A)) {                // full-width A..Z
        return static_cast<char16_t>(c + 32);
    }
    if (c >= 0x0400 && c <= 0x040F) { // Cyrillic Ѐ..Џ
        return static_cast<char16_t>(c + 80);
    }
    if (c >= 0x0531 && c <= 0x0556) { // Armenian
        return static_cast<char16_t>(c + 48);
    }
    if (c == 0x0178) { // Ÿ
        return 0x00FF;
    }
    if (InAlternatingRange(c)) {
        return static_cast<char16_t>(c | 1);
    }
    if (InOddAlternatingRange(c) && (c & 1) != 0) {
        return static_cast<char16_t>(c + 1);
    }
    return c;
}

bool EqualsIgnoreCase(std::u16string_view a, std::u16string_view b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](char16_t x, char16_t y) { return x == y || FoldCase(x) == FoldCase(y); });
}

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

void AppendUtf16(std::u16string& out, char32_t cp) {
    if (cp < 0x10000) {
        out.push_back(static_cast<char16_t>(cp));
    } else {
        cp -= 0x10000;
        out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
        out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
    }
}

// Decodes one UTF-8 sequence at `i`, advancing it; malformed input yields U+FFFD and skips one
// byte, so that the decoder always makes progress.
char32_t DecodeUtf8(std::string_view s, std::size_t& i) {
    const auto lead = static_cast<unsigned char>(s[i++]);
    if (lead < 0x80) {
        return lead;
    }
    int extra = 0;
    char32_t cp = 0;
    char32_t min = 0;
    if ((lead & 0xE0) == 0xC0) {
        extra = 1, cp = lead & 0x1F, min = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        extra = 2, cp = lead & 0x0F, min = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        extra = 3, cp = lead & 0x07, min = 0x10000;
    } else {
        return kReplacement;
    }
    const std::size_t start = i;
    for (int k = 0; k < extra; ++k) {
        if (i >= s.size() || (static_cast<unsigned char>(s[i]) & 0xC0) != 0x80) {
            i = start;
            return kReplacement;
        }
        cp = (cp << 6) | (static_cast<unsigned char>(s[i++]) & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        i = start;
        return kReplacement;
    }
    return cp;
}

} // namespace

std::u16string Utf8ToUtf16(std::string_view utf8) {
    std::u16string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        AppendUtf16(out, DecodeUtf8(utf8, i));
    }
    return out;
}

std::string Utf16ToUtf8(std::u16string_view utf16) {
    std::string out;
    out.reserve(utf16.size());
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        char32_t cp = utf16[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 &&
            utf16[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (utf16[++i] - 0xDC00);
        } else if (cp >= 0xD800 && cp <= 0xDFFF) {
            cp = kReplacement;
        }
        AppendUtf8(out, cp);
    }
    return out;
}

std::u16string AsciiToUtf16(std::string_view ascii) {
    return std::u16string(ascii.begin(), ascii.end());
}

} // namespace qf
