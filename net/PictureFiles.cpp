#include "net/PictureFiles.h"

#include "platform/Text.h"

#include <cstdint>

namespace qf {

namespace {

constexpr uint64_t kFnvOffsetBasis = 14695981039346656037ULL;
constexpr uint64_t kFnvPrime = 1099511628211ULL;
constexpr std::u16string_view kPictureFilePrefix = u"Pic";

uint64_t Fnv1a(std::string_view bytes) {
    uint64_t hash = kFnvOffsetBasis;
    for (const char byte : bytes) {
        hash ^= static_cast<unsigned char>(byte);
        hash *= kFnvPrime;
    }
    return hash;
}

bool StartsWithIgnoringCase(std::u16string_view text, std::u16string_view prefix) {
    return text.size() >= prefix.size() && EqualsIgnoreCase(text.substr(0, prefix.size()), prefix);
}

} // namespace

bool IsPictureAddress(std::u16string_view url) {
    return StartsWithIgnoringCase(url, u"http://") || StartsWithIgnoringCase(url, u"https://");
}

std::u16string PictureFileName(std::u16string_view url) {
    constexpr std::u16string_view kDigits = u"0123456789abcdef";
    constexpr int kNibbles = 16;
    uint64_t hash = Fnv1a(Utf16ToUtf8(url));
    std::u16string name(kPictureFilePrefix);
    std::u16string digits(kNibbles, u'0');
    for (int i = kNibbles - 1; i >= 0; --i) {
        digits[static_cast<std::size_t>(i)] = kDigits[hash & 0xF];
        hash >>= 4;
    }
    return name + digits;
}

std::u16string PicturePath(std::u16string_view dataFolder, std::u16string_view url) {
    std::u16string path(dataFolder);
    path += u'/';
    path += kPictureFolderName;
    path += u'/';
    path += PictureFileName(url);
    return path;
}

} // namespace qf
