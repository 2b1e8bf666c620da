#include "cli/ChannelArgument.h"

#include "cli/Session.h"
#include "model/DataFolder.h"
#include "platform/Files.h"
#include "platform/StringTable.h"
#include "platform/Text.h"
#include "store/CachedFeeds.h"

#include <string>

namespace qf::cli {

NamedChannel FindChannelById(ChannelStore& store, int32_t id) {
    for (const auto& category : store.categories()) {
        for (const auto& channel : category->channels()) {
            if (channel->id() == id) {
                return {category.get(), channel.get()};
            }
        }
    }
    PrintError(u"There is no channel " + AsciiToUtf16(std::to_string(id)) + u".");
    return {};
}

bool LoadStories(Session& session, Channel& channel) {
    if (LoadCachedFeed(channel, session.volume())) {
        return true;
    }
    const auto path = DataFilePath(session.volume(), channel.cacheFile());
    if (path && FileExists(*path)) {
        PrintError(LoadString(kStrParseFailed));
    } else {
        PrintError(u"Channel " + AsciiToUtf16(std::to_string(channel.id())) +
                   u" has not been downloaded yet.");
    }
    return false;
}

} // namespace qf::cli
