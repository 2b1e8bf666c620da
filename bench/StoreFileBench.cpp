// Loading and saving a large channel store, beside what libxml2 alone needs for the same file:
// parsing it and visiting every element and attribute, and serialising the parsed tree and
// writing it as durably as the store is written.
#include "model/ChannelStore.h"
#include "platform/AtomicFile.h"
#include "platform/FsPath.h"
#include "platform/Text.h"
#include "store/ChannelStoreFile.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlsave.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

namespace {

constexpr int kCategories = 100;
constexpr int kChannelsPerCategory = 100;

std::u16string Utf16(const std::string& text) {
    return qf::AsciiToUtf16(text);
}

// A channel as a real store holds one after some refreshes: a title, an address, counts, an
// update time, and on some channels an encoding, credentials or an error.
std::unique_ptr<qf::Channel> MakeChannel(int id) {
    auto channel = std::make_unique<qf::Channel>();
    const std::string n = std::to_string(id);
    channel->SetId(id);
    channel->SetTitle(qf::WString(Utf16("Example channel number " + n + " - Top Stories")));
    channel->SetXmlUrl(qf::WString(Utf16("https://feeds.example" + n + ".com/news/rss.xml")));
    if (id % 3 == 0) {
        channel->SetEncoding(qf::WString(u"windows-1252"));
    }
    if (id % 10 == 0) {
        channel->SetUserName(qf::WString(u"reader"));
        channel->SetPassword(qf::WString(u"secret"));
    }
    if (id % 7 == 0) {
        channel->SetHasErrors(1);
        channel->SetErrorText(qf::WString(u"Failed to parse the channel@10/22/07 10:16 PM"), false);
    }
    channel->SetItemCount(25 + id % 20);
    channel->SetNewItemCount(id % 25);
    qf::FeedDate updated;
    updated.SetFields(2024, 1 + id % 12, 1 + id % 28, id % 24, id % 60, 0, 0);
    channel->SetUpdateTime(updated);
    return channel;
}

void FillStore(qf::ChannelStore& store) {
    int id = 1;
    for (int c = 0; c < kCategories; ++c) {
        auto category =
            std::make_unique<qf::Category>(qf::WString(Utf16("Category " + std::to_string(c))));
        for (int i = 0; i < kChannelsPerCategory; ++i) {
            category->AddChannel(MakeChannel(id++));
        }
        store.AddCategory(std::move(category));
    }
    store.SetNextId(id);
}

// A folder for the store file, removed at exit.
class Scratch {
public:
    Scratch()
        : folder_(std::filesystem::temp_directory_path() /
                  ("quillfeed-bench-" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(folder_);
        qf::ChannelStore store;
        FillStore(store);
        qf::SaveStore(store, qf::FromFsPath(file()));
        std::ifstream in(file(), std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(in), {});
    }
    ~Scratch() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    std::filesystem::path file() const { return folder_ / "QFChannels.opml"; }
    std::filesystem::path floorFile() const { return folder_ / "floor.opml"; }
    const std::string& bytes() const { return bytes_; }

private:
    std::filesystem::path folder_;
    std::string bytes_;
};

const Scratch& TheScratch() {
    static const Scratch scratch;
    return scratch;
}

void LoadStore(benchmark::State& state) {
    const std::u16string path = qf::FromFsPath(TheScratch().file());
    for (auto _ : state) {
        qf::ChannelStore store;
        benchmark::DoNotOptimize(qf::LoadStore(store, path));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * TheScratch().bytes().size()));
}
BENCHMARK(LoadStore)->Unit(benchmark::kMillisecond);

std::size_t Visit(const xmlNode* node) {
    std::size_t touched = 0;
    for (; node != nullptr; node = node->next) {
        if (node->type != XML_ELEMENT_NODE) {
            continue;
        }
        touched += xmlStrlen(node->name);
        for (const xmlAttr* attribute = node->properties; attribute != nullptr;
             attribute = attribute->next) {
            touched += xmlStrlen(attribute->name);
            if (attribute->children != nullptr) {
                touched += xmlStrlen(attribute->children->content);
            }
        }
        touched += Visit(node->children);
    }
    return touched;
}

// Read the file, parse it and visit every element name and attribute.
void LoadFloor(benchmark::State& state) {
    const std::string path = TheScratch().file().string();
    for (auto _ : state) {
        std::ifstream in(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        xmlDoc* document = xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr,
                                         nullptr, XML_PARSE_NONET);
        benchmark::DoNotOptimize(Visit(xmlDocGetRootElement(document)));
        xmlFreeDoc(document);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * TheScratch().bytes().size()));
}
BENCHMARK(LoadFloor)->Unit(benchmark::kMillisecond);

void SaveStore(benchmark::State& state) {
    qf::ChannelStore store;
    FillStore(store);
    const std::u16string path = qf::FromFsPath(TheScratch().file());
    for (auto _ : state) {
        benchmark::DoNotOptimize(qf::SaveStore(store, path));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * TheScratch().bytes().size()));
}
BENCHMARK(SaveStore)->Unit(benchmark::kMillisecond);

// Serialise the parsed tree of the same file and write it the way every file is written.
void SaveFloor(benchmark::State& state) {
    const std::string& bytes = TheScratch().bytes();
    xmlDoc* document = xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr,
                                     XML_PARSE_NONET);
    for (auto _ : state) {
        xmlBuffer* buffer = xmlBufferCreate();
        xmlSaveCtxt* context = xmlSaveToBuffer(buffer, "UTF-8", 0);
        xmlSaveDoc(context, document);
        xmlSaveClose(context);
        const std::string_view text(reinterpret_cast<const char*>(xmlBufferContent(buffer)),
                                    static_cast<std::size_t>(xmlBufferLength(buffer)));
        benchmark::DoNotOptimize(qf::WriteFileAtomically(TheScratch().floorFile(), text));
        xmlBufferFree(buffer);
    }
    xmlFreeDoc(document);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(SaveFloor)->Unit(benchmark::kMillisecond);

} // namespace
