#include "parse/Charset.h"

#include "platform/CodePage.h"
#include "platform/Text.h"

#include <array>

namespace qf {
namespace {

struct LanguageCodePage {
    std::u16string_view language;     // matched ignoring case
    std::u16string_view regionPrefix; // matched case-sensitively; empty when none is accepted
    int32_t codePage;
    std::u16string_view charsetName;
};

// Only Russian accepts a regional suffix; the others must be written bare. Feeds have long been
// read this way, so a wider match would change the code page of existing channels.
constexpr std::array<LanguageCodePage, 5> kLanguages{{
    {u"ru", u"ru-", 1251, u"windows-1251"},
    {u"zh-cn", u"", 936, u"windows-936"},
    {u"zh-tw", u"", 950, u"windows-950"},
    {u"ja", u"", 932, u"windows-932"},
    {u"ko", u"", 949, u"windows-949"},
}};

bool LanguageMatches(std::u16string_view language, const LanguageCodePage& entry) {
    return EqualsIgnoreCase(language, entry.language) ||
           (!entry.regionPrefix.empty() && language.starts_with(entry.regionPrefix));
}

constexpr int32_t kIsoFamilyPart = 8859;

// The Windows code page that stands for each ISO 8859 part; parts without one give 0.
int32_t IsoPartCodePage(int32_t part) {
    switch (part) {
    case 1:
    case 15:
        return 1252;
    case 2:
        return 1250;
    case 3:
    case 9:
        return 1254;
    case 4:
        return 1257;
    case 5:
        return 1251;
    case 6:
        return 1256;
    case 7:
        return 1253;
    case 8:
        return 1255;
    default:
        return 0;
    }
}

int32_t IsoCodePage(std::u16string_view rest) {
    const std::size_t dash = rest.find(u'-');
    if (dash == std::u16string_view::npos) {
        return 0;
    }
    if (LeadingDecimal(rest.substr(0, dash)) != kIsoFamilyPart) {
        return 0;
    }
    return IsoPartCodePage(LeadingDecimal(rest.substr(dash + 1)));
}

std::size_t WithoutTerminator(std::size_t limit) {
    return limit == 0 ? 0 : limit - 1;
}

} // namespace

bool LanguageToCodePage(const WString& language, int32_t& codePage, std::u16string& charsetName,
                        std::size_t nameLimit) {
    codePage = 0;
    charsetName.clear();
    if (language.isNull()) {
        return false;
    }
    for (const LanguageCodePage& entry : kLanguages) {
        if (LanguageMatches(language.view(), entry)) {
            codePage = entry.codePage;
            charsetName = BoundedCopy(entry.charsetName, nameLimit);
            return true;
        }
    }
    return false;
}

int32_t CharsetToCodePage(const WString& charsetName) {
    if (charsetName.isNull()) {
        return 0;
    }
    const std::u16string name = BoundedCopy(charsetName.view(), kFormattedCapacity);
    const std::size_t dash = name.find(u'-');
    if (dash == std::u16string::npos) {
        return 0;
    }
    const std::u16string_view family = std::u16string_view(name).substr(0, dash);
    const std::u16string_view rest = std::u16string_view(name).substr(dash + 1);
    if (EqualsIgnoreCase(family, u"windows")) {
        return LeadingDecimal(rest);
    }
    if (EqualsIgnoreCase(family, u"iso")) {
        return IsoCodePage(rest);
    }
    return 0;
}

std::u16string BytesToWide(std::string_view bytes, int32_t codePage, std::size_t outLimit) {
    return DecodeCodePage(bytes.substr(0, bytes.find('\0')), codePage, WithoutTerminator(outLimit));
}

std::string WideToBytes(std::u16string_view text, int32_t codePage, std::size_t outLimit) {
    return EncodeCodePage(text.substr(0, text.find(u'\0')), codePage, WithoutTerminator(outLimit));
}

} // namespace qf
