#include "cli/Commands.h"
#include "cli/FeedOutput.h"
#include "cli/Session.h"
#include "model/Channel.h"
#include "parse/FeedFile.h"
#include "platform/StringTable.h"
#include "platform/Text.h"

#include <string>

namespace qf::cli {

namespace {

// Reads a feed file as a refresh reads a fresh download, into a new channel, and shows what it
// found. Needs no store.
class ParseCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("parse");
        app.description("Read a feed file as a download of it would be read, and show it");
        app.add_option("FILE", file_, "The feed file")->required();
        app.add_flag("--json", json_, "Print the channel and its stories as one JSON object");
    }

    int Run() override {
        Channel channel;
        if (!LoadFeedFile(Utf8ToUtf16(file_), channel, true)) {
            PrintError(LoadString(kStrParseFailed));
            return kExitFailed;
        }
        if (json_) {
            PrintJson(FeedJson(channel));
        } else {
            PrintFeedSummary(channel);
        }
        return kExitOk;
    }

private:
    std::string file_;
    bool json_ = false;
};

} // namespace

std::unique_ptr<Command> MakeParseCommand() {
    return std::make_unique<ParseCommand>();
}

} // namespace qf::cli
