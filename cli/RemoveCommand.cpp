#include "cli/ChannelArgument.h"
#include "cli/Commands.h"
#include "cli/Session.h"
#include "platform/Text.h"
#include "store/CachedFeeds.h"

#include <string>

namespace qf::cli {

namespace {

// Unsubscribes from a channel: its cached feed and logo go first, then the channel itself.
class RemoveCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("remove");
        app.description("Delete a channel's cached files and remove it from the store");
        app.add_option("ID", id_, "The channel's id, as `list` shows it")->required();
    }

    int Run() override {
        Session session;
        if (!session.Open(Access::kWrite)) {
            return kExitFailed;
        }
        const NamedChannel named = FindChannelById(session.store(), id_);
        if (named.channel == nullptr) {
            return kExitFailed;
        }
        // A channel whose files stay behind stays subscribed, so that removing it can be tried
        // again.
        if (!DeleteChannelFiles(*named.channel, session.volume())) {
            PrintError(u"Failed to delete the files of channel " +
                       AsciiToUtf16(std::to_string(id_)) + u".");
            return kExitFailed;
        }
        named.category->RemoveChannel(named.channel);
        return session.SaveStore() ? kExitOk : kExitFailed;
    }

private:
    int32_t id_ = 0;
};

} // namespace

std::unique_ptr<Command> MakeRemoveCommand() {
    return std::make_unique<RemoveCommand>();
}

} // namespace qf::cli
