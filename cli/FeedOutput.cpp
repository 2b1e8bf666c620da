#include "cli/FeedOutput.h"

#include "cli/Session.h"
#include "model/Channel.h"
#include "parse/FeedType.h"

#include <algorithm>
#include <array>

namespace qf::cli {

namespace {

// Headlines line up when their dates take the room of the longest short local date.
constexpr std::size_t kDateWidth = 17;
constexpr std::size_t kNumberWidth = 4;
constexpr std::array<const char*, 4> kFeedTypeNames = {"unknown", "RDF", "RSS", "Atom"};

const char* FeedTypeName(int32_t feedType) {
    return feedType >= kFeedRdf && feedType <= kFeedAtom
               ? kFeedTypeNames[static_cast<std::size_t>(feedType)]
               : kFeedTypeNames[kFeedUnknown];
}

Json ImageJson(const ChannelImage& image) {
    return Json{{"title", TextOrNull(image.title())},
                {"url", TextOrNull(image.url())},
                {"localFile", TextOrNull(image.localFile())},
                {"width", image.width()},
                {"height", image.height()}};
}

} // namespace

Json StoryJson(const NewsItem& item) {
    return Json{{"title", TextOrNull(item.title())},
                {"link", TextOrNull(item.link())},
                {"description", TextOrNull(item.description())},
                {"date", DateText(item.date())},
                {"read", item.read()},
                {"codePage", item.codePage()}};
}

Json FeedJson(const Channel& channel) {
    Json items = Json::array();
    for (const auto& item : channel.items()) {
        items.push_back(StoryJson(*item));
    }
    return Json{{"feedType", channel.feedType()},
                {"title", TextOrNull(channel.title())},
                {"lastBuildDate", DateText(channel.lastBuildDate())},
                {"encoding", TextOrNull(channel.encoding())},
                {"codePage", channel.codePage()},
                {"image", ImageJson(channel.image())},
                {"itemCount", channel.itemCount()},
                {"newItemCount", channel.newItemCount()},
                {"items", std::move(items)}};
}

std::string HeadlineLine(int32_t number, const NewsItem& item) {
    std::string line = std::to_string(number);
    line.insert(0, kNumberWidth - std::min(line.size(), kNumberWidth), ' ');
    line += item.isRead() ? "   " : " * ";
    std::string date;
    item.date().FormatShortLocal(date);
    date.resize(std::max(date.size(), kDateWidth), ' ');
    return line + date + "  " + item.title().toUtf8();
}

void PrintFeedSummary(const Channel& channel) {
    PrintLine("Title: " + channel.title().toUtf8());
    PrintLine(std::string("Feed type: ") + FeedTypeName(channel.feedType()));
    if (channel.lastBuildDate().valid()) {
        PrintLine("Last built: " + DateText(channel.lastBuildDate()).get<std::string>());
    }
    if (!channel.encoding().isNull()) {
        PrintLine("Encoding: " + channel.encoding().toUtf8() + " (code page " +
                  std::to_string(channel.codePage()) + ")");
    }
    const ChannelImage& image = channel.image();
    if (!image.url().isNull()) {
        PrintLine("Image: " + image.url().toUtf8() + " as " + image.localFile().toUtf8());
    }
    PrintLine("Stories: " + std::to_string(channel.itemCount()) + ", unread " +
              std::to_string(channel.newItemCount()));
    int32_t number = 0;
    for (const auto& item : channel.items()) {
        PrintLine(HeadlineLine(++number, *item));
    }
}

} // namespace qf::cli
