#include "cli/Commands.h"
#include "cli/Session.h"
#include "model/Channel.h"
#include "model/DataFolder.h"
#include "model/ViewerSettings.h"
#include "parse/FeedFile.h"
#include "platform/StringTable.h"
#include "platform/Text.h"
#include "render/ChannelPage.h"
#include "render/PageContext.h"
#include "render/StoryPage.h"

#include <cstdio>
#include <optional>
#include <string>

namespace qf::cli {

namespace {

struct BannerSize {
    int width = 0;
    int height = 0;
};

// Reads "WxH" as two whole numbers of pixels.
std::optional<BannerSize> ParseBannerSize(const std::string& text) {
    BannerSize size;
    char separator = 0;
    int consumed = 0;
    if (std::sscanf(text.c_str(), "%d%c%d%n", &size.width, &separator, &size.height, &consumed) !=
            3 ||
        separator != 'x' || consumed != static_cast<int>(text.size()) || size.width < 0 ||
        size.height < 0) {
        return std::nullopt;
    }
    return size;
}

// The data folder of the settings' volume, where the cached logos lie; the defaults are
// written on a first run, as every command does.
PageContext CurrentPageContext() {
    ViewerSettings settings;
    if (!LoadSettings(settings)) {
        SaveSettings(settings);
    }
    return PageContext{DataFolderOfVolume(settings.storageVolume().str()).value_or(u"")};
}

// Prints the story page of one story, or the channel banner page, of a feed file read as
// `parse` reads it.
class PageCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("page");
        app.description("Print the story page of one story, or the channel banner page, of a feed "
                        "file");
        app.add_option("FILE", file_, "The feed file")->required();
        auto* which = app.add_option_group("page", "Which page to print");
        which->add_option("--story", story_, "The story's index, counted from 0")
            ->check(CLI::NonNegativeNumber);
        auto* banner =
            which->add_option("--banner", banner_, "The banner's size in pixels")
                ->type_name("WxH")
                ->check(CLI::Validator(
                    [](const std::string& value) {
                        return ParseBannerSize(value) ? std::string() : "expected WxH, e.g. 240x40";
                    },
                    "WxH"));
        which->require_option(1);
        app.add_flag("--smartphone", smartphone_, "Build the banner as a Smartphone shows it")
            ->needs(banner);
    }

    int Run() override {
        Channel channel;
        if (!LoadFeedFile(Utf8ToUtf16(file_), channel, true)) {
            PrintError(LoadString(kStrParseFailed));
            return kExitFailed;
        }
        const PageContext context = CurrentPageContext();
        return story_ ? PrintStoryPage(channel, *story_, context)
                      : PrintBannerPage(channel, context);
    }

private:
    int PrintStoryPage(const Channel& channel, int index, const PageContext& context) const {
        const NewsItem* item = channel.ItemAt(index);
        if (item == nullptr) {
            PrintError(Utf8ToUtf16("The feed has no story " + std::to_string(index) + "."));
            return kExitFailed;
        }
        const auto page = BuildStoryPage(channel, *item, context);
        if (!page) {
            PrintError(Utf8ToUtf16("Story " + std::to_string(index) + " has no text to show."));
            return kExitFailed;
        }
        PrintLine(Utf16ToUtf8(*page));
        return kExitOk;
    }

    int PrintBannerPage(const Channel& channel, const PageContext& context) const {
        const BannerSize size = ParseBannerSize(banner_).value_or(BannerSize{});
        PrintLine(
            Utf16ToUtf8(BuildChannelPage(channel, size.width, size.height, smartphone_, context)));
        return kExitOk;
    }

    std::string file_;
    std::optional<int> story_;
    std::string banner_;
    bool smartphone_ = false;
};

} // namespace

std::unique_ptr<Command> MakePageCommand() {
    return std::make_unique<PageCommand>();
}

} // namespace qf::cli
