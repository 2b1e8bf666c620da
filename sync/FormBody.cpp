#include "sync/FormBody.h"

#include "platform/Text.h"

namespace qf {

namespace {

bool IsUnreserved(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

} // namespace

std::string PercentEncoded(std::string_view utf8) {
    constexpr char kHex[] = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(utf8.size());
    for (const char c : utf8) {
        if (IsUnreserved(c)) {
            encoded += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        encoded += '%';
        encoded += kHex[byte >> 4];
        encoded += kHex[byte & 0xF];
    }
    return encoded;
}

FormBody& FormBody::Add(std::string_view name, std::string_view utf8Value) {
    if (!text_.empty()) {
        text_ += '&';
    }
    text_ += PercentEncoded(name);
    text_ += '=';
    text_ += PercentEncoded(utf8Value);
    return *this;
}

FormBody& FormBody::Add(std::string_view name, std::u16string_view value) {
    return Add(name, std::string_view(Utf16ToUtf8(value)));
}

} // namespace qf
