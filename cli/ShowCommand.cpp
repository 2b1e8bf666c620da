#include "cli/ChannelArgument.h"
#include "cli/Commands.h"
#include "cli/FeedOutput.h"
#include "cli/Session.h"

namespace qf::cli {

namespace {

// Lists a channel's headlines from its cached feed, numbered as `mark` takes them.
class ShowCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("show");
        app.description("List a channel's headlines from its cached feed");
        app.add_option("ID", id_, "The channel's id, as `list` shows it")->required();
        app.add_flag("--unread", unreadOnly_, "Only the stories not read yet");
        app.add_flag("--json", json_, "Print {\"items\": [...]} with one object per story");
    }

    int Run() override {
        Session session;
        if (!session.Open(Access::kRead)) {
            return kExitFailed;
        }
        Channel* channel = FindChannelById(session.store(), id_).channel;
        if (channel == nullptr || !LoadStories(session, *channel)) {
            return kExitFailed;
        }
        Json items = Json::array();
        int32_t number = 0;
        for (const auto& item : channel->items()) {
            ++number;
            if (unreadOnly_ && item->isRead()) {
                continue;
            }
            if (json_) {
                items.push_back(StoryJson(*item));
            } else {
                PrintLine(HeadlineLine(number, *item));
            }
        }
        if (json_) {
            PrintJson(Json{{"items", std::move(items)}});
        }
        return kExitOk;
    }

private:
    int32_t id_ = 0;
    bool unreadOnly_ = false;
    bool json_ = false;
};

} // namespace

std::unique_ptr<Command> MakeShowCommand() {
    return std::make_unique<ShowCommand>();
}

} // namespace qf::cli
