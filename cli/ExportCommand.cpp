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

// Text made safe for a double-quoted XML attribute. Characters XML cannot carry become U+FFFD;
// tabs and line breaks are written as references so that readers keep them.
std::string Attribute(const WString& text) {
    std::string carried;
    for (const char c : text.toUtf8()) {
        const bool control =
            static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
        carried += control ? std::string("\xEF\xBF\xBD") : std::string(1, c);
    }
    std::string out;
    AppendEscapedAttribute(out, carried);
    return out;
}

// A channel without a title is shown by its address, as every reader needs some text.
void AppendChannel(std::string& out, const Channel& channel) {
    const std::string text =
        Attribute(channel.title().empty() ? channel.xmlUrl() : channel.title());
    out.append(R"(      <outline type="rss" text=")")
        .append(text)
        .append(R"(" title=")")
        .append(text)
        .append(R"(" xmlUrl=")")
        .append(Attribute(channel.xmlUrl()))
        .append("\"/>\n");
}

// The subscriptions as OPML 2.0 for other feed readers: a folder outline per category, and for
// each channel its title and address, never its credentials.
std::string ExportOpml(const ChannelStore& store) {
    std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<opml version=\"2.0\">\n"
                      "  <head>\n"
                      "    <title>Quillfeed subscriptions</title>\n"
                      "  </head>\n"
                      "  <body>\n";
    for (const auto& category : store.categories()) {
        const std::string name = Attribute(category->name());
        out.append(R"(    <outline text=")")
            .append(name)
            .append(R"(" title=")")
            .append(name)
            .append("\">\n");
        for (const auto& channel : category->channels()) {
            AppendChannel(out, *channel);
        }
        out += "    </outline>\n";
    }
    out += "  </body>\n"
           "</opml>\n";
    return out;
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
