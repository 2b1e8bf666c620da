#include "parse/XmlText.h"

namespace qf {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsPlainAscii(char32_t c) {
    return c < 0x80 && (c >= 0x20 || c == '\t' || c == '\n' || c == '\r');
}

void AppendCodePoint(std::string& out, char32_t c) {
    if (c < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    } else if (c < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (c >> 12)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (c >> 18)));
        out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    }
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
}

} // namespace

void AppendXmlUtf8(std::string& out, std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (IsPlainAscii(c)) {
            out.push_back(static_cast<char>(c));
            continue;
        }
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
            text[i + 1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        } else if (c < 0x80 || (c >= 0xD800 && c <= 0xDFFF) || c == 0xFFFE || c == 0xFFFF) {
            c = kReplacement;
        }
        AppendCodePoint(out, c);
    }
}

} // namespace qf
