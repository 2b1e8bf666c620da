#include "store/CachedFeeds.h"

#include "model/CachedFileNames.h"
#include "model/ChannelStore.h"
#include "model/DataFolder.h"
#include "parse/FeedReader.h"
#include "parse/ReadState.h"
#include "parse/XmlDocument.h"
#include "platform/Files.h"

#include <optional>
#include <string>

namespace qf {

namespace {

std::optional<std::u16string> CachedFeedPath(Channel& channel, std::u16string_view volume) {
    if (channel.cacheFile().isNull()) {
        channel.SetCacheFile(WString(FeedFileName(channel.id())));
    }
    return DataFilePath(volume, channel.cacheFile());
}

bool LoadDocument(XmlDocument& document, Channel& channel, std::u16string_view volume) {
    const auto path = CachedFeedPath(channel, volume);
    return path && document.LoadFile(*path);
}

// The logo's address as the cached feed gives it, read into a scratch channel so that the
// channel itself is left as it is.
WString ImageAddressFromCachedFeed(Channel& channel, std::u16string_view volume) {
    XmlDocument document;
    Channel scratch;
    scratch.SetId(channel.id());
    if (LoadDocument(document, channel, volume)) {
        ParseFeed(document, scratch, false);
    }
    return scratch.image().url();
}

// A file that is not there counts as deleted.
bool DeleteIfPresent(const std::optional<std::u16string>& path) {
    return path && (!FileExists(*path) || DeleteFile(*path));
}

bool SaveReadStates(Channel& channel, std::u16string_view volume) {
    const auto path = CachedFeedPath(channel, volume);
    XmlDocument document;
    if (!path || !document.LoadFile(*path)) {
        return true;
    }
    if (!WriteReadStates(document, channel) || !document.Save(*path)) {
        return false;
    }
    channel.SetModified(false);
    return true;
}

} // namespace

bool LoadCachedFeed(Channel& channel, std::u16string_view volume) {
    XmlDocument document;
    if (!LoadDocument(document, channel, volume)) {
        return false;
    }
    // Only the stories go: the counts the store file keeps stay until the feed gives new ones.
    channel.items().clear();
    return ParseFeed(document, channel, false);
}

bool MarkAllItems(Channel& channel, bool read, std::u16string_view volume) {
    if (channel.items().empty()) {
        LoadCachedFeed(channel, volume);
    }
    if (channel.items().empty()) {
        return false;
    }
    for (const auto& item : channel.items()) {
        item->SetRead(read ? 1 : 0);
    }
    channel.CountItems();
    channel.SetModified(true);
    return true;
}

bool SaveModifiedChannels(ChannelStore& store) {
    const std::u16string_view volume = store.settings().storageVolume().view();
    bool saved = true;
    for (const auto& category : store.categories()) {
        for (const auto& channel : category->channels()) {
            if (channel->modified() && !SaveReadStates(*channel, volume)) {
                saved = false;
            }
        }
    }
    return saved;
}

bool DeleteChannelFiles(Channel& channel, std::u16string_view volume) {
    const auto feedPath = CachedFeedPath(channel, volume);
    ChannelImage& image = channel.image();
    if (image.localFile().isNull()) {
        const WString url =
            image.url().isNull() ? ImageAddressFromCachedFeed(channel, volume) : image.url();
        image.SetLocalFile(WString(ImageFileName(channel.id(), url.view())));
    }
    const bool imageGone = DeleteIfPresent(DataFilePath(volume, image.localFile()));
    return DeleteIfPresent(feedPath) && imageGone;
}

} // namespace qf
