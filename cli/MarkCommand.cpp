#include "cli/ChannelArgument.h"
#include "cli/Commands.h"
#include "cli/Session.h"
#include "platform/Text.h"
#include "store/CachedFeeds.h"

#include <string>
#include <vector>

namespace qf::cli {

namespace {

// Marks stories of a channel read or unread and saves, so that the states land in the cached
// feed as the program writes them.
class MarkCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("mark");
        app.description("Mark a channel's stories (all of them when no number is given) read or "
                        "unread");
        app.add_option("ID", id_, "The channel's id, as `list` shows it")->required();
        app.add_option("INDEX", numbers_, "Story numbers as `show` prints them (1 = the first)");
        CLI::Option_group* state = app.add_option_group("state", "The state to give");
        state->add_flag("--read", read_, "Mark as read");
        state->add_flag("--unread", unread_, "Mark as unread");
        state->require_option(1);
    }

    int Run() override {
        Session session;
        if (!session.Open(Access::kWrite)) {
            return kExitFailed;
        }
        Channel* channel = FindChannelById(session.store(), id_).channel;
        if (channel == nullptr || !LoadStories(session, *channel) || !Mark(*channel, session)) {
            return kExitFailed;
        }
        return session.SaveStore() ? kExitOk : kExitFailed;
    }

private:
    bool Mark(Channel& channel, Session& session) const {
        if (numbers_.empty()) {
            MarkAllItems(channel, read_,
                         session.volume()); // a feed without stories has none to mark
            return true;
        }
        for (const int32_t number : numbers_) {
            if (channel.ItemAt(number - 1) == nullptr) {
                PrintError(u"Channel " + AsciiToUtf16(std::to_string(channel.id())) +
                           u" has no story " + AsciiToUtf16(std::to_string(number)) + u".");
                return false;
            }
        }
        for (const int32_t number : numbers_) {
            channel.ItemAt(number - 1)->SetRead(read_ ? 1 : 0);
        }
        channel.CountItems();
        channel.SetModified(true);
        return true;
    }

    int32_t id_ = 0;
    std::vector<int32_t> numbers_;
    bool read_ = false;
    bool unread_ = false;
};

} // namespace

std::unique_ptr<Command> MakeMarkCommand() {
    return std::make_unique<MarkCommand>();
}

} // namespace qf::cli
