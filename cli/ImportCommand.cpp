#include "cli/Commands.h"
#include "cli/Session.h"
#include "platform/Text.h"
#include "store/OpmlImport.h"

#include <algorithm>
#include <string>

namespace qf::cli {

namespace {

std::size_t ChannelCount(const ChannelStore& store) {
    std::size_t count = 0;
    for (const auto& category : store.categories()) {
        count += category->channels().size();
    }
    return count;
}

// Leaves out of `source` every channel whose address `store` already holds anywhere, as the
// add-channel wizard never offers those.
void DropSubscribed(ChannelStore& source, const ChannelStore& store) {
    for (auto& category : source.categories()) {
        auto& channels = category->channels();
        std::erase_if(channels, [&store](const auto& channel) {
            return store.Contains(channel->xmlUrl().view());
        });
    }
}

class ImportCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("import");
        app.description("Subscribe to every new channel of an OPML file or of the built-in "
                        "channel directory");
        CLI::Option* file = app.add_option("file", file_, "OPML file to import");
        app.add_flag("--directory", directory_, "Import the built-in channel directory")
            ->excludes(file);
    }

    int Run() override {
        if (!directory_ && file_.empty()) {
            PrintError(u"import: give an OPML file or --directory.");
            return kExitUsage;
        }
        Session session;
        if (!session.Open(Access::kWrite)) {
            return kExitFailed;
        }
        ChannelStore source;
        const OpmlSource from =
            directory_ ? OpmlSource(BuiltInDirectory{}) : OpmlSource(Utf8ToUtf16(file_));
        if (!ImportOpml(from, source)) {
            PrintError(directory_
                           ? u"Failed to read the built-in channel directory."
                           : u"Failed to import the OPML file '" + Utf8ToUtf16(file_) + u"'.");
            return kExitFailed;
        }
        ChannelStore& store = session.store();
        DropSubscribed(source, store);
        const std::size_t before = ChannelCount(store);
        store.MergeCategories(source.categories());
        const std::size_t added = ChannelCount(store) - before;
        if (added > 0 && !session.SaveStore()) {
            return kExitFailed;
        }
        PrintLine("Added " + std::to_string(added) + (added == 1 ? " channel." : " channels."));
        return kExitOk;
    }

private:
    std::string file_;
    bool directory_ = false;
};

} // namespace

std::unique_ptr<Command> MakeImportCommand() {
    return std::make_unique<ImportCommand>();
}

} // namespace qf::cli
