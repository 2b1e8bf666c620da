#include "platform/Text.h"

#include <algorithm>
#include <cstring>
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

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
    const auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::ranges::equal(a, b, {}, fold, fold);
}

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}

bool IsLowSurrogate(char32_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

bool IsSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

bool XmlCarries(char32_t c) {
    return c >= 0x20 ? c != 0xFFFE && c != 0xFFFF : c == '\t' || c == '\n' || c == '\r';
}

void PutUtf8(std::string& out, char32_t cp) {
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

char16_t* PutUtf16(char16_t* dst, char32_t cp) {
    if (cp < 0x10000) {
        *dst++ = static_cast<char16_t>(cp);
    } else {
        cp -= 0x10000;
        *dst++ = static_cast<char16_t>(0xD800 + (cp >> 10));
        *dst++ = static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
    }
    return dst;
}

// Copies the run of ASCII bytes that starts at `src`, eight at a time while it lasts: feed text
// is mostly ASCII, and this is where reading a large feed spends its time.
const unsigned char* CopyAsciiRun(const unsigned char* src, const unsigned char* end,
                                  char16_t*& dst) {
    constexpr uint64_t kHighBits = 0x8080808080808080ULL;
    constexpr std::ptrdiff_t kBlock = sizeof(uint64_t);
    while (end - src >= kBlock) {
        uint64_t block = 0;
        std::memcpy(&block, src, kBlock);
        if ((block & kHighBits) != 0) {
            break;
        }
        for (std::ptrdiff_t k = 0; k < kBlock; ++k) {
            dst[k] = src[k];
        }
        src += kBlock;
        dst += kBlock;
    }
    while (src < end && *src < 0x80) {
        *dst++ = *src++;
    }
    return src;
}

// Decodes the sequence of two to four bytes at `src` and moves past it. Anything but a
// well-formed shortest sequence of a scalar value yields U+FFFD and moves past its first byte
// only, so that the decoder always makes progress and resynchronises on the next byte.
char32_t DecodeSequence(const unsigned char*& src, const unsigned char* end) {
    const unsigned char lead = *src;
    int extra = 0;
    char32_t cp = 0;
    char32_t min = 0;
    if ((lead & 0xE0) == 0xC0) {
        extra = 1, cp = lead & 0x1F, min = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        extra = 2, cp = lead & 0x0F, min = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        extra = 3, cp = lead & 0x07, min = 0x10000;
    }
    bool valid = extra > 0 && end - src > extra;
    for (int k = 1; valid && k <= extra; ++k) {
        valid = (src[k] & 0xC0) == 0x80;
        cp = (cp << 6) | (src[k] & 0x3F);
    }
    if (!valid || cp < min || cp > 0x10FFFF || IsSurrogate(cp)) {
        ++src;
        return kReplacement;
    }
    src += extra + 1;
    return cp;
}

} // namespace

void AppendUtf16(std::u16string& out, std::string_view utf8) {
    const std::size_t start = out.size();
    out.resize(start + utf8.size()); // never more UTF-16 units than UTF-8 bytes
    char16_t* dst = out.data() + start;
    const auto* src = reinterpret_cast<const unsigned char*>(utf8.data());
    const auto* const end = src + utf8.size();
    while (src < end) {
        if (*src < 0x80) {
            src = CopyAsciiRun(src, end, dst);
        } else {
            dst = PutUtf16(dst, DecodeSequence(src, end));
        }
    }
    out.resize(static_cast<std::size_t>(dst - out.data()));
}

std::u16string Utf8ToUtf16(std::string_view utf8) {
    std::u16string out;
    AppendUtf16(out, utf8);
    return out;
}

void AppendUtf8(std::string& out, std::u16string_view utf16, Utf8Use use) {
    const bool xml = use == Utf8Use::kXml;
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        char32_t cp = utf16[i];
        if (cp < 0x80 && (!xml || XmlCarries(cp))) {
            out.push_back(static_cast<char>(cp));
            continue;
        }
        if (IsHighSurrogate(cp) && i + 1 < utf16.size() && IsLowSurrogate(utf16[i + 1])) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (utf16[++i] - 0xDC00);
        } else if (IsSurrogate(cp) || (xml && !XmlCarries(cp))) {
            cp = kReplacement;
        }
        PutUtf8(out, cp);
    }
}

std::string Utf16ToUtf8(std::u16string_view utf16) {
    std::string out;
    out.reserve(utf16.size());
    AppendUtf8(out, utf16);
    return out;
}

std::u16string AsciiToUtf16(std::string_view ascii) {
    return std::u16string(ascii.begin(), ascii.end());
}

} // namespace qf
