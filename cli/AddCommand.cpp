#include "cli/Commands.h"
#include "cli/Session.h"
#include "platform/Text.h"

#include <optional>
#include <string>

namespace qf::cli {

namespace {

class AddCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("add");
        app.description("Subscribe to a feed in the category shown (the first one when none is)");
        app.add_option("url", url_, "Address of the feed")->required();
        app.add_option("title", title_, "Title of the channel (default: \"Channel #\" and its id)");
    }

    int Run() override {
        Session session;
        if (!session.Open(Access::kWrite)) {
            return kExitFailed;
        }
        ChannelStore& store = session.store();
        const WString title = WString(title_ ? Utf8ToUtf16(*title_) : store.ProposedTitle());
        const Channel* channel = store.AddChannel(WString(Utf8ToUtf16(url_)), title);
        if (channel == nullptr) {
            PrintError(u"The category already holds the channel '" + Utf8ToUtf16(url_) + u"'.");
            return kExitFailed;
        }
        if (!session.SaveStore()) {
            return kExitFailed;
        }
        PrintLine(std::to_string(channel->id()));
        return kExitOk;
    }

private:
    std::string url_;
    std::optional<std::string> title_;
};

} // namespace

std::unique_ptr<Command> MakeAddCommand() {
    return std::make_unique<AddCommand>();
}

} // namespace qf::cli
