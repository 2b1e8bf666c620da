#include "cli/Commands.h"
#include "cli/Session.h"
#include "parse/XmlWriter.h"
#include "platform/AtomicFile.h"
#include "platform/Text.h"

#include <cstdio>
#include <filesystem>
#include <string>

namespace qf::cli {

namespace {

// A channel without a title is shown by its address, as every reader needs some text. Empty
// values are written all the same, so that every outline has its text.
void WriteChannel(XmlWriter& writer, const Channel& channel) {
    const std::u16string_view text =
        channel.title().empty() ? channel.xmlUrl().view() : channel.title().view();
    writer.StartElement(u"outline");
    writer.Attribute(u"type", u"rss");
    writer.Attribute(u"text", text);
    writer.Attribute(u"title", text);
    writer.Attribute(u"xmlUrl", channel.xmlUrl().view());
    writer.EndElement();
}

// A category is a folder outline, written with an end tag even when it holds no channel.
void WriteCategory(XmlWriter& writer, const Category& category) {
    writer.StartElement(u"outline");
    writer.Attribute(u"text", category.name().view());
    writer.Attribute(u"title", category.name().view());
    writer.EndAttributes();
    for (const auto& channel : category.channels()) {
        WriteChannel(writer, *channel);
    }
    writer.EndElement();
}

// The subscriptions as OPML 2.0 for other feed readers: a folder outline per category, and for
// each channel its title and address, never its credentials.
std::string ExportOpml(const ChannelStore& store) {
    XmlWriter writer(XmlWriter::Layout::kIndented);
    writer.StartElement(u"opml");
    writer.Attribute(u"version", u"2.0");
    writer.StartElement(u"head");
    writer.StartElement(u"title");
    writer.Text(u"Quillfeed subscriptions");
    writer.EndElement();
    writer.EndElement();
    writer.StartElement(u"body");
    writer.EndAttributes();
    for (const auto& category : store.categories()) {
        WriteCategory(writer, *category);
    }
    return writer.Finish();
}

class ExportCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("export");
        app.description("Write the subscriptions as OPML 2.0 for other feed readers");
        app.add_option("file", file_, "File to write (default: standard output)");
    }

    int Run() override {
        Session session;
        if (!session.Open(Access::kRead)) {
            return kExitFailed;
        }
        const std::string opml = ExportOpml(session.store());
        if (file_.empty()) {
            std::fwrite(opml.data(), 1, opml.size(), stdout);
            return std::fflush(stdout) == 0 ? kExitOk : kExitFailed;
        }
        if (!WriteFileAtomically(std::filesystem::path(file_), opml)) {
            PrintError(u"Failed to write '" + Utf8ToUtf16(file_) + u"'.");
            return kExitFailed;
        }
        return kExitOk;
    }

private:
    std::string file_;
};

} // namespace

std::unique_ptr<Command> MakeExportCommand() {
    return std::make_unique<ExportCommand>();
}

} // namespace qf::cli
