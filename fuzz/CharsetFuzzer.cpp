// Input: a charset name, a newline, then a payload. The name picks a code page; the payload is
// read as bytes in that code page and in a few fixed ones, written back, and also taken as raw
// UTF-16 (unpaired surrogates included) to be written out.

#include "parse/Charset.h"
#include "parse/FeedType.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr int32_t kFixedCodePages[] = {932, 1251, 0};

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

bool HasLoneSurrogate(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c >= 0xD800 && c <= 0xDBFF) {
            if (i + 1 == text.size() || text[i + 1] < 0xDC00 || text[i + 1] > 0xDFFF) {
                return true;
            }
            ++i;
        } else if (c >= 0xDC00 && c <= 0xDFFF) {
            return true;
        }
    }
    return false;
}

bool StartsWith(std::u16string_view text, std::u16string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

// A limit cuts the text short and keeps room for a terminator; it never changes what comes
// before the cut.
void CheckLimits(std::string_view payload, int32_t codePage, std::size_t limit) {
    const std::u16string wide = qf::BytesToWide(payload, codePage);
    const std::u16string cut = qf::BytesToWide(payload, codePage, limit);
    Require(cut.size() < limit || (limit == 0 && cut.empty()));
    Require(StartsWith(wide, cut));

    const std::string bytes = qf::WideToBytes(wide, codePage);
    const std::string cutBytes = qf::WideToBytes(wide, codePage, limit);
    Require(cutBytes.size() < limit || (limit == 0 && cutBytes.empty()));
    Require(std::string_view(bytes).starts_with(cutBytes));
}

void Convert(std::string_view payload, int32_t codePage) {
    const std::u16string wide = qf::BytesToWide(payload, codePage);
    Require(wide.find(u'\0') == std::u16string::npos);
    Require(!HasLoneSurrogate(wide));
    const std::string bytes = qf::WideToBytes(wide, codePage);
    Require(bytes.find('\0') == std::string::npos);
}

void EncodeRawUtf16(std::string_view payload, int32_t codePage) {
    std::u16string raw(payload.size() / sizeof(char16_t), u'\0');
    std::memcpy(raw.data(), payload.data(), raw.size() * sizeof(char16_t));
    Require(qf::WideToBytes(raw, codePage).find('\0') == std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t newline = input.find('\n');
    const std::string_view name = newline == std::string_view::npos ? "" : input.substr(0, newline);
    const std::string_view payload =
        newline == std::string_view::npos ? input : input.substr(newline + 1);

    const qf::WString charsetName = qf::WString::fromUtf8(name);
    const int32_t codePage = qf::CharsetToCodePage(charsetName);
    int32_t languageCodePage = 0;
    std::u16string languageCharset;
    qf::LanguageToCodePage(charsetName, languageCodePage, languageCharset);
    qf::DetectFeedType(charsetName.view());

    Convert(payload, codePage);
    EncodeRawUtf16(payload, codePage);
    for (const int32_t fixed : kFixedCodePages) {
        Convert(payload, fixed);
        EncodeRawUtf16(payload, fixed);
        CheckLimits(payload, fixed, payload.size() / 2);
    }
    return 0;
}
