#include "cli/FeedOutput.h"

#include "model/Channel.h"
#include "parse/Charset.h"

#include <algorithm>
#include <array>

namespace qf::cli {

namespace {

constexpr int kJsonIndent = 2;
// Headlines line up when their dates take the room of the longest short local date.
constexpr std::size_t kDateWidth = 17;
constexpr std::array<const char*, 4> kFeedTypeNames = {"unknown", "RDF", "RSS", "Atom"};

nlohmann::ordered_json Text(const WString& text) {
    return text.isNull() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(text.toUtf8());
}

std::string Rfc822(const FeedDate& date) {
    std::string text;
    date.FormatRfc822(text);
    return text;
}

std::string ShortLocal(const FeedDate& date) {
    std::string text;
    date.FormatShortLocal(text);
    return text;
}

const char* FeedTypeName(int32_t feedType) {
    return feedType >= kFeedRdf && feedType <= kFeedAtom
               ? kFeedTypeNames[static_cast<std::size_t>(feedType)]
               : kFeedTypeNames[0];
}

nlohmann::ordered_json ImageJson(const ChannelImage& image) {
    return {{"title", Text(image.title())},
            {"url", Text(image.url())},
            {"localFile", Text(image.localFile())},
            {"width", image.width()},
            {"height", image.height()}};
}

} // namespace

nlohmann::ordered_json StoryJson(const NewsItem& item) {
    return {{"title", Text(item.title())},
            {"link", Text(item.link())},
            {"description", Text(item.description())},
            {"date", Rfc822(item.date())},
            {"read", item.isRead()},
            {"codePage", item.codePage()}};
}

nlohmann::ordered_json FeedJson(const Channel& channel) {
    nlohmann::ordered_json items = nlohmann::ordered_json::array();
    for (const auto& item : channel.items()) {
        items.push_back(StoryJson(*item));
    }
    return {{"feedType", channel.feedType()},
            {"title", Text(channel.title())},
            {"lastBuildDate", Rfc822(channel.lastBuildDate())},
            {"encoding", Text(channel.encoding())},
            {"codePage", channel.codePage()},
            {"image", ImageJson(channel.image())},
            {"itemCount", channel.itemCount()},
            {"newItemCount", channel.newItemCount()},
            {"items", std::move(items)}};
}

std::string HeadlineLine(int32_t number, const NewsItem& item) {
    std::string line = std::to_string(number);
    line.insert(0, line.size() < 4 ? 4 - line.size() : 0, ' ');
    line += item.isRead() ? "   " : " * ";
    std::string date = ShortLocal(item.date());
    date.resize(std::max(date.size(), kDateWidth), ' ');
    line += date;
    line += "  ";
    line += item.title().toUtf8();
    line += '\n';
    return line;
}

std::string FeedSummary(const Channel& channel) {
    std::string text = "Title: " + channel.title().toUtf8() + "\n";
    text += "Feed type: " + std::string(FeedTypeName(channel.feedType())) + "\n";
    if (channel.lastBuildDate().valid()) {
        text += "Last built: " + Rfc822(channel.lastBuildDate()) + "\n";
    }
    if (!channel.encoding().isNull()) {
        text += "Encoding: " + channel.encoding().toUtf8() + " (code page " +
                std::to_string(channel.codePage()) + ")\n";
    }
    const ChannelImage& image = channel.image();
    if (!image.url().isNull()) {
        text += "Image: " + image.url().toUtf8() + " as " + image.localFile().toUtf8() + "\n";
    }
    text += "Stories: " + std::to_string(channel.itemCount()) + ", unread " +
            std::to_string(channel.newItemCount()) + "\n";
    int32_t number = 0;
    for (const auto& item : channel.items()) {
        text += HeadlineLine(++number, *item);
    }
    return text;
}

std::string JsonText(const nlohmann::ordered_json& document) {
    return document.dump(kJsonIndent, ' ', false,
                         nlohmann::ordered_json::error_handler_t::replace) +
           "\n";
}

} // namespace qf::cli
