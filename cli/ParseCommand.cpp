#include "cli/ParseCommand.h"

#include "cli/FeedOutput.h"
#include "model/Channel.h"
#include "parse/FeedFile.h"
#include "platform/StringTable.h"
#include "platform/Text.h"

#include <cstdio>

namespace qf::cli {

void ParseCommand::Setup(CLI::App& app) {
    app.name("parse");
    app.description("Read a feed file as a download of it would be read, and show what it holds");
    app.add_option("FILE", file_, "The feed file")->required();
    app.add_flag("--json", json_, "Print one JSON object");
}

int ParseCommand::Run() {
    Channel channel;
    if (!LoadFeedFile(Utf8ToUtf16(file_), channel, true)) {
        std::fprintf(stderr, "%s\n", Utf16ToUtf8(LoadString(kStrParseFailed)).c_str());
        return kExitFailed;
    }
    const std::string text = json_ ? JsonText(FeedJson(channel)) : FeedSummary(channel);
    std::fwrite(text.data(), 1, text.size(), stdout);
    return kExitOk;
}

} // namespace qf::cli
