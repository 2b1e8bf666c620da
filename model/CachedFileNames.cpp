#include "model/CachedFileNames.h"

#include "platform/Text.h"

namespace qf {

namespace {

constexpr std::u16string_view kFeedFilePrefix = u"Channel";
constexpr std::u16string_view kFeedFileExtension = u"xml";
constexpr std::u16string_view kImageFilePrefix = u"Image";
// Extensions of this length or longer are taken for part of a path or a query, not a file type.
constexpr std::size_t kExtensionLimit = 5;

std::u16string Decimal(int32_t number) {
    return AsciiToUtf16(std::to_string(number));
}

} // namespace

std::u16string FeedFileName(int32_t channelId) {
    std::u16string name(kFeedFilePrefix);
    name += Decimal(channelId);
    name += u'.';
    name += kFeedFileExtension;
    return name;
}

std::u16string ImageFileName(int32_t channelId, std::u16string_view imageUrl) {
    std::u16string name(kImageFilePrefix);
    name += Decimal(channelId);
    const std::u16string_view extension = ImageExtension(imageUrl);
    if (!extension.empty()) {
        name += u'.';
        name += extension;
    }
    return name;
}

std::optional<int32_t> ChannelIdOfCachedFile(std::u16string_view name) {
    for (const std::u16string_view prefix : {kFeedFilePrefix, kImageFilePrefix}) {
        if (name.starts_with(prefix)) {
            // Names are compared whole, so "Channel07.xml" or "Image7.gif.part-x" are no one's.
            const int32_t id = LeadingDecimal(name.substr(prefix.size()));
            if (name == FeedFileName(id) || name == ImageFileName(id, name)) {
                return id;
            }
        }
    }
    return std::nullopt;
}

std::u16string_view ImageExtension(std::u16string_view imageUrl) {
    const std::size_t query = imageUrl.rfind(u'?');
    if (query != std::u16string_view::npos) {
        imageUrl = imageUrl.substr(0, query);
    }
    const std::size_t dot = imageUrl.rfind(u'.');
    if (dot == std::u16string_view::npos) {
        return {};
    }
    const std::u16string_view extension = imageUrl.substr(dot + 1);
    if (extension.find(u'/') != std::u16string_view::npos || extension.size() >= kExtensionLimit) {
        return {};
    }
    return extension;
}

} // namespace qf
