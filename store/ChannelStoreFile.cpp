#include "store/ChannelStoreFile.h"

#include "model/ChannelStore.h"
#include "model/DataFolder.h"
#include "parse/Charset.h"
#include "parse/XmlDocument.h"
#include "parse/XmlWriter.h"
#include "platform/AtomicFile.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/FsPath.h"
#include "platform/StringTable.h"
#include "platform/Text.h"
#include "store/CachedFeeds.h"
#include "store/StoreBackups.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace qf {

namespace {

constexpr std::u16string_view kPathPlaceholder = u"%s";
constexpr std::u16string_view kFileVersion = u"1.0";
constexpr std::u16string_view kYes = u"yes";
constexpr std::u16string_view kNo = u"no";
constexpr std::string_view kBrokenSuffix = ".broken";

// Element names.
constexpr std::u16string_view kOpml = u"opml";
constexpr std::u16string_view kHead = u"head";
constexpr std::u16string_view kBody = u"body";
constexpr std::u16string_view kOptions = u"options";
constexpr std::u16string_view kChannels = u"channels";
constexpr std::u16string_view kChannel = u"channel";
constexpr std::u16string_view kOutline = u"outline";

// Attribute names.
constexpr std::u16string_view kVersion = u"version";
constexpr std::u16string_view kCategoryId = u"categoryID";
constexpr std::u16string_view kNextId = u"nextID";
constexpr std::u16string_view kNewChannels = u"newChannels";
constexpr std::u16string_view kSortBy = u"sortBy";
constexpr std::u16string_view kSortOrder = u"sortOrder";
constexpr std::u16string_view kNewHeadlines = u"newHeadlines";
constexpr std::u16string_view kAutoUpdate = u"autoUpdate";
constexpr std::u16string_view kUpdateValue = u"updateValue";
constexpr std::u16string_view kUpdateUnit = u"updateUnit";
constexpr std::u16string_view kUpdateDate = u"updateDate";
constexpr std::u16string_view kText = u"text";
constexpr std::u16string_view kTitle = u"title";
constexpr std::u16string_view kEncoding = u"encoding";
constexpr std::u16string_view kId = u"ID";
constexpr std::u16string_view kXmlUrl = u"xmlUrl";
constexpr std::u16string_view kUserName = u"userName";
constexpr std::u16string_view kPassword = u"password";
constexpr std::u16string_view kItemCount = u"itemCount";
constexpr std::u16string_view kNewItemCount = u"newItemCount";
constexpr std::u16string_view kMatchCount = u"matchCount";
constexpr std::u16string_view kUpdateTime = u"updateTime";
constexpr std::u16string_view kHasErrors = u"qf_hasErrors";
constexpr std::u16string_view kErrorText = u"qf_errorText";
constexpr std::u16string_view kEtag = u"qf_etag";
constexpr std::u16string_view kLastModified = u"qf_lastModified";
constexpr std::u16string_view kNotBefore = u"qf_notBefore";
constexpr std::u16string_view kFreshUntil = u"qf_freshUntil";
constexpr std::u16string_view kGone = u"qf_gone";

std::u16string_view YesNo(int32_t value) {
    return value != 0 ? kYes : kNo;
}

// Writes the document of a whole store, element by element in the order readers of the file
// expect. Null texts write no attribute, so a channel without credentials or error has none.
// The document is written straight to text rather than built as a tree: a store can hold
// thousands of channels, and the tree would cost several times the writing.
class StoreWriter {
public:
    std::string Write(const ChannelStore& store) {
        writer_.StartElement(kOpml);
        writer_.Attribute(kVersion, kFileVersion);
        WriteOptions(store);
        writer_.StartElement(kBody);
        for (const auto& category : store.categories()) {
            WriteCategory(*category);
        }
        return writer_.Finish();
    }

private:
    void WriteOptions(const ChannelStore& store) {
        writer_.StartElement(kHead);
        writer_.StartElement(kOptions);
        writer_.StartElement(kChannels);
        writer_.Attribute(kCategoryId, store.categoryId());
        writer_.Attribute(kNextId, store.nextId());
        writer_.Attribute(kNewChannels, YesNo(store.newChannels()));
        writer_.EndElement();
        writer_.StartElement(kChannel);
        writer_.Attribute(kSortBy, store.sortBy());
        writer_.Attribute(kSortOrder, store.sortOrder());
        writer_.Attribute(kNewHeadlines, YesNo(store.newHeadlines()));
        writer_.Attribute(kAutoUpdate, YesNo(store.autoUpdate()));
        writer_.Attribute(kUpdateValue, store.updateValue());
        writer_.Attribute(kUpdateUnit, store.updateUnit());
        const std::u16string updateDate = store.updateDate().FormatRfc822();
        if (!updateDate.empty()) {
            writer_.Attribute(kUpdateDate, std::u16string_view(updateDate));
        }
        writer_.EndElement();
        writer_.EndElement();
        writer_.EndElement();
    }

    void WriteCategory(const Category& category) {
        writer_.StartElement(kOutline);
        writer_.Attribute(kText, category.name());
        for (const auto& channel : category.channels()) {
            WriteChannel(*channel);
        }
        writer_.EndElement();
    }

    void WriteChannel(const Channel& channel) {
        writer_.StartElement(kOutline);
        writer_.Attribute(kEncoding, channel.encoding());
        writer_.Attribute(kId, channel.id());
        writer_.Attribute(kText, channel.title());
        writer_.Attribute(kXmlUrl, channel.xmlUrl());
        writer_.Attribute(kUserName, channel.userName());
        writer_.Attribute(kPassword, channel.password());
        writer_.Attribute(kUpdateValue, channel.updateValue());
        writer_.Attribute(kUpdateUnit, channel.updateUnit());
        writer_.Attribute(kItemCount, channel.itemCount());
        writer_.Attribute(kNewItemCount, channel.newItemCount());
        writer_.Attribute(kMatchCount, channel.matchCount());
        writer_.Attribute(kUpdateTime, std::u16string_view(channel.updateTime().FormatRfc822()));
        writer_.Attribute(kHasErrors, YesNo(channel.hasErrors()));
        writer_.Attribute(kErrorText, channel.errorText());
        WriteServerState(channel.server());
        writer_.EndElement();
    }

    // Only what the server said is written, so a store from before these existed saves as it was.
    void WriteServerState(const ServerState& server) {
        writer_.Attribute(kEtag, server.etag);
        writer_.Attribute(kLastModified, server.lastModified);
        WriteDate(kNotBefore, server.notBefore);
        WriteDate(kFreshUntil, server.freshUntil);
        if (server.gone) {
            writer_.Attribute(kGone, kYes);
        }
    }

    void WriteDate(std::u16string_view name, const FeedDate& date) {
        const std::u16string text = date.FormatRfc822();
        if (!text.empty()) {
            writer_.Attribute(name, std::u16string_view(text));
        }
    }

    XmlWriter writer_;
};

// Walks a parsed store document into a store. Every attribute is optional: an absent one leaves
// its field as it was.
class StoreReader {
public:
    // `settleIds` for the store file itself: channels that share an id are given ids of their
    // own. An imported file is read without, and its channels get their ids as they are merged.
    StoreReader(const XmlDocument& document, ChannelStore& store, bool settleIds)
        : document_(document), store_(store), settleIds_(settleIds) {}

    bool Read() {
        const XmlNode root = document_.RootNode().firstElementChild();
        if (!root.isNamed(kOpml)) {
            return false;
        }
        for (const XmlNode child : root.children()) {
            if (child.isNamed(kHead)) {
                for (const XmlNode options : child.children(kOptions)) {
                    ReadOptions(options);
                }
            } else if (child.isNamed(kBody)) {
                ReadBody(child);
            }
        }
        // Only now, with every id of the file known, can a shared one be told from a free one.
        if (settleIds_) {
            store_.RenumberSharedIds(handedOut_);
        }
        if (store_.nextId() == 0) {
            store_.RecomputeNextId();
        }
        return true;
    }

private:
    // Values are read through the buffer of 10240 characters that shaped every stored value.
    static std::optional<std::u16string> Attribute(XmlNode element, std::u16string_view name) {
        std::optional<std::u16string> value = element.attribute(name);
        if (value && value->size() > kXmlValueCapacity) {
            value = BoundedCopy(*value, kXmlValueCapacity);
        }
        return value;
    }

    template <typename Set>
    static void ReadNumber(XmlNode element, std::u16string_view name, Set set) {
        if (const auto value = Attribute(element, name)) {
            set(LeadingDecimal(*value));
        }
    }

    template <typename Set>
    static void ReadYes(XmlNode element, std::u16string_view name, Set set) {
        if (const auto value = Attribute(element, name)) {
            set(EqualsIgnoreCase(*value, kYes) ? 1 : 0);
        }
    }

    void ReadOptions(XmlNode options) {
        for (const XmlNode channels : options.children(kChannels)) {
            ReadNumber(channels, kCategoryId, [this](int32_t v) { store_.SetCategoryId(v); });
            ReadNumber(channels, kNextId, [this](int32_t v) { store_.SetNextId(v); });
            // Written as yes/no but read as a number, so it comes back as 0 from a saved file.
            ReadNumber(channels, kNewChannels, [this](int32_t v) { store_.SetNewChannels(v); });
        }
        for (const XmlNode list : options.children(kChannel)) {
            ReadListOptions(list);
        }
    }

    void ReadListOptions(XmlNode list) {
        ReadNumber(list, kSortBy, [this](int32_t v) { store_.SetSortBy(v); });
        ReadNumber(list, kSortOrder, [this](int32_t v) { store_.SetSortOrder(v); });
        ReadYes(list, kNewHeadlines, [this](int32_t v) { store_.SetNewHeadlines(v); });
        ReadYes(list, kAutoUpdate, [this](int32_t v) { store_.SetAutoUpdate(v); });
        ReadNumber(list, kUpdateValue, [this](int32_t v) { store_.SetUpdateValue(v); });
        ReadNumber(list, kUpdateUnit, [this](int32_t v) { store_.SetUpdateUnit(v); });
        if (const auto value = Attribute(list, kUpdateDate)) {
            FeedDate date;
            date.Parse(*value);
            store_.SetUpdateDate(date);
        }
    }

    void ReadBody(XmlNode body) {
        for (const XmlNode outline : body.children(kOutline)) {
            if (Attribute(outline, kXmlUrl)) {
                auto channel = ReadChannel(outline);
                store_.DefaultCategory().AddChannel(std::move(channel));
                continue;
            }
            auto category = std::make_unique<Category>();
            if (auto name = Attribute(outline, kText)) {
                category->SetName(WString(std::move(*name)));
            } else if (auto title = Attribute(outline, kTitle)) {
                category->SetName(WString(std::move(*title)));
            }
            CollectChannels(outline, *store_.AddCategory(std::move(category)));
        }
    }

    // Groups inside a category are flattened into it, however deep they nest.
    void CollectChannels(XmlNode parent, Category& category) {
        for (const XmlNode outline : parent.children(kOutline)) {
            if (Attribute(outline, kXmlUrl)) {
                category.AddChannel(ReadChannel(outline));
            } else {
                CollectChannels(outline, category);
            }
        }
    }

    std::unique_ptr<Channel> ReadChannel(XmlNode outline) {
        auto channel = std::make_unique<Channel>();
        Channel& c = *channel;
        const auto id = Attribute(outline, kId);
        if (store_.AssignLoadedId(c, id ? std::optional<int32_t>(LeadingDecimal(*id))
                                        : std::nullopt)) {
            handedOut_.push_back(&c);
        }
        if (auto encoding = Attribute(outline, kEncoding)) {
            const WString name(std::move(*encoding));
            c.SetEncoding(name);
            c.SetCodePage(CharsetToCodePage(name));
        }
        if (!ReadText(outline, kText, [&c](const WString& v) { c.SetTitle(v); })) {
            ReadText(outline, kTitle, [&c](const WString& v) { c.SetTitle(v); });
        }
        ReadText(outline, kXmlUrl, [&c](const WString& v) { c.SetXmlUrl(v); });
        ReadText(outline, kUserName, [&c](const WString& v) { c.SetUserName(v); });
        ReadText(outline, kPassword, [&c](const WString& v) { c.SetPassword(v); });
        ReadNumber(outline, kUpdateValue, [&c](int32_t v) { c.SetUpdateValue(v); });
        ReadNumber(outline, kUpdateUnit, [&c](int32_t v) { c.SetUpdateUnit(v); });
        ReadNumber(outline, kItemCount, [&c](int32_t v) { c.SetItemCount(v); });
        ReadNumber(outline, kNewItemCount, [&c](int32_t v) { c.SetNewItemCount(v); });
        ReadNumber(outline, kMatchCount, [&c](int32_t v) { c.SetMatchCount(v); });
        FeedDate updateTime;
        ReadDate(outline, kUpdateTime, updateTime);
        c.SetUpdateTime(updateTime);
        ReadYes(outline, kHasErrors, [&c](int32_t v) {
            c.SetHasErrors(v);
            c.SetState(v != 0 ? kChannelFailed : kChannelIdle);
        });
        ReadText(outline, kErrorText, [&c](const WString& v) { c.SetErrorText(v, false); });
        ReadServerState(outline, c.server());
        return channel;
    }

    static void ReadServerState(XmlNode outline, ServerState& server) {
        ReadText(outline, kEtag, [&server](const WString& v) { server.etag = v; });
        ReadText(outline, kLastModified, [&server](const WString& v) { server.lastModified = v; });
        ReadDate(outline, kNotBefore, server.notBefore);
        ReadDate(outline, kFreshUntil, server.freshUntil);
        ReadYes(outline, kGone, [&server](int32_t v) { server.gone = v != 0; });
    }

    static void ReadDate(XmlNode element, std::u16string_view name, FeedDate& date) {
        if (const auto value = Attribute(element, name)) {
            date.Parse(*value);
        }
    }

    template <typename Set>
    static bool ReadText(XmlNode element, std::u16string_view name, Set set) {
        auto value = Attribute(element, name);
        if (value) {
            set(WString(std::move(*value)));
        }
        return value.has_value();
    }

    const XmlDocument& document_;
    ChannelStore& store_;
    bool settleIds_;
    // The channels whose id the load handed out, for a stored 0.
    std::vector<const Channel*> handedOut_;
};

// "<path>.broken", or the first of "<path>.broken.1", ".broken.2", ... that is free.
std::filesystem::path FreeBrokenPath(const std::filesystem::path& path) {
    std::filesystem::path candidate = path;
    candidate += kBrokenSuffix;
    for (int number = 1;
         std::filesystem::symlink_status(candidate).type() != std::filesystem::file_type::not_found;
         ++number) {
        candidate = path;
        candidate += std::string(kBrokenSuffix) + "." + std::to_string(number);
    }
    return candidate;
}

} // namespace

bool MoveUnreadableStoreAside(ChannelStore& store, std::u16string_view path,
                              std::u16string* notice) {
    if (store.unreadableStorePath().empty() || store.unreadableStorePath() != path) {
        return true;
    }
    const std::filesystem::path file = ToFsPath(path);
    std::error_code error;
    if (std::filesystem::symlink_status(file, error).type() !=
        std::filesystem::file_type::not_found) {
        const std::filesystem::path aside = FreeBrokenPath(file);
        std::filesystem::rename(file, aside, error);
        if (error) {
            return false;
        }
        if (notice != nullptr) {
            *notice = u"The channels file '" + std::u16string(path) +
                      u"' could not be read; it was kept as '" + FromFsPath(aside) + u"'.";
        }
    }
    store.SetUnreadableStorePath({});
    return true;
}

const std::u16string& KeptStorePath(ChannelStore& store) {
    if (store.channelStorePath().empty()) {
        if (auto path = ChannelStorePath(store.settings().storageVolume().view())) {
            store.SetChannelStorePath(std::move(*path));
        }
    }
    return store.channelStorePath();
}

bool LoadStore(ChannelStore& store, std::u16string_view path) {
    store.SetLoaded(true);
    if (!FileExists(path)) {
        return false;
    }
    XmlDocument document;
    if (!document.LoadFile(path) || !StoreReader(document, store, true).Read()) {
        store.SetUnreadableStorePath(std::u16string(path));
        return false;
    }
    return true;
}

bool ReadStoreDocument(const XmlDocument& document, ChannelStore& store) {
    return StoreReader(document, store, false).Read();
}

bool SaveStore(ChannelStore& store, std::u16string_view path, std::u16string* notice) {
    if (path.empty()) {
        return false;
    }
    const std::string text = StoreWriter().Write(store);
    CreateParentDirectory(path); // a folder that cannot be made fails the write below
    if (!MoveUnreadableStoreAside(store, path, notice)) {
        return false;
    }
    // A backup that cannot be made must not cost the user the changes being saved.
    KeepDailyBackup(path);
    return WriteFileAtomically(ToFsPath(path), text);
}

bool SaveAll(ChannelStore& store, std::u16string* notice) {
    const std::u16string path = store.channelStorePath();
    SaveModifiedChannels(store);
    return SaveStore(store, path, notice);
}

bool CloseStore(ChannelStore& store, std::u16string* notice) {
    const bool saved = SaveAll(store, notice);
    store.categories().clear();
    store.SetLoaded(false);
    store.SetChannelStorePath({});
    return saved;
}

std::u16string OpenStoreFailedText(std::u16string_view path) {
    std::u16string text(LoadString(kStrOpenStoreFailed));
    const std::size_t at = text.find(kPathPlaceholder);
    if (at != std::u16string::npos) {
        text.replace(at, kPathPlaceholder.size(), path);
    }
    return text;
}

} // namespace qf
