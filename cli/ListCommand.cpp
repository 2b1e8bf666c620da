#include "cli/Commands.h"
#include "cli/Json.h"
#include "cli/Session.h"

#include <string>

namespace qf::cli {

namespace {

Json ChannelJson(const Channel& channel) {
    return Json{
        {"id", channel.id()},
        {"title", TextOrNull(channel.title())},
        {"xmlUrl", TextOrNull(channel.xmlUrl())},
        {"userName", TextOrNull(channel.userName())},
        {"hasPassword", !channel.password().isNull()},
        {"encoding", TextOrNull(channel.encoding())},
        {"codePage", channel.codePage()},
        {"state", channel.state()},
        {"hasErrors", channel.hasErrors()},
        {"errorText", TextOrNull(channel.errorText())},
        {"updateValue", channel.updateValue()},
        {"updateUnit", channel.updateUnit()},
        {"itemCount", channel.itemCount()},
        {"newItemCount", channel.newItemCount()},
        {"matchCount", channel.matchCount()},
        {"updateTime", DateText(channel.updateTime())},
        {"cacheFile", TextOrNull(channel.cacheFile())},
        {"feedType", channel.feedType()},
        {"etag", channel.server().etag.toUtf8()},
        {"lastModified", channel.server().lastModified.toUtf8()},
        {"notBefore", DateText(channel.server().notBefore)},
        {"freshUntil", DateText(channel.server().freshUntil)},
        {"gone", channel.server().gone},
    };
}

Json StoreJson(const ChannelStore& store) {
    Json categories = Json::array();
    for (const auto& category : store.categories()) {
        Json channels = Json::array();
        for (const auto& channel : category->channels()) {
            channels.push_back(ChannelJson(*channel));
        }
        categories.push_back(Json{{"name", TextOrNull(category->name())}, {"channels", channels}});
    }
    return Json{
        {"nextID", store.nextId()},           {"categoryID", store.categoryId()},
        {"newChannels", store.newChannels()}, {"sortBy", store.sortBy()},
        {"sortOrder", store.sortOrder()},     {"newHeadlines", store.newHeadlines()},
        {"autoUpdate", store.autoUpdate()},   {"updateValue", store.updateValue()},
        {"updateUnit", store.updateUnit()},   {"updateDate", DateText(store.updateDate())},
        {"categories", categories},
    };
}

std::string StateText(const Channel& channel) {
    switch (channel.state()) {
    case kChannelUpdating:
        return "  updating";
    case kChannelFailed:
        return channel.errorText().isNull() ? "  failed"
                                            : "  failed: " + channel.errorText().toUtf8();
    default:
        return "";
    }
}

// One line per category, and under it one line per channel: id, title (the address when it has
// none), unread and total stories, and the state when it is not idle.
void PrintStore(const ChannelStore& store) {
    for (const auto& category : store.categories()) {
        PrintLine(category->name().toUtf8());
        for (const auto& channel : category->channels()) {
            const WString& title = channel->title().empty() ? channel->xmlUrl() : channel->title();
            PrintLine("  " + std::to_string(channel->id()) + "  " + title.toUtf8() + "  " +
                      std::to_string(channel->newItemCount()) + "/" +
                      std::to_string(channel->itemCount()) + StateText(*channel));
        }
    }
}

class ListCommand : public Command {
public:
    void Setup(CLI::App& app) override {
        app.name("list");
        app.description("List the categories and their channels with unread/total counts");
        app.add_flag("--json", json_, "Print the store as one JSON document");
    }

    int Run() override {
        Session session;
        if (!session.Open(Access::kRead)) {
            return kExitFailed;
        }
        if (json_) {
            PrintJson(StoreJson(session.store()));
        } else {
            PrintStore(session.store());
        }
        return kExitOk;
    }

private:
    bool json_ = false;
};

} // namespace

std::unique_ptr<Command> MakeListCommand() {
    return std::make_unique<ListCommand>();
}

} // namespace qf::cli
