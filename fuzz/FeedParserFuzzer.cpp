// Feeds arbitrary bytes to the feed readers, loaded both as a file and as text: whatever the
// document, reading it, marking its stories and stamping their read states back must neither
// crash nor hang.
#include "model/Channel.h"
#include "parse/FeedReader.h"
#include "parse/ReadState.h"
#include "parse/XmlDocument.h"
#include "platform/AtomicFile.h"
#include "platform/Text.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

const std::filesystem::path& ScratchFolder() {
    static const std::filesystem::path folder = [] {
        auto path = std::filesystem::temp_directory_path() /
                    ("quillfeed-feed-fuzz-" + std::to_string(::getpid()));
        std::filesystem::create_directories(path);
        return path;
    }();
    return folder;
}

void ReadAndStamp(qf::XmlDocument& document) {
    qf::Channel channel;
    channel.SetId(1);
    qf::ParseFeed(document, channel, true);
    bool read = false;
    for (const auto& item : channel.items()) {
        item->SetRead(read ? 1 : 0);
        read = !read;
    }
    qf::WriteReadStates(document, channel);
    qf::Channel refreshed;
    refreshed.SetId(1);
    qf::ParseFeed(document, refreshed, false);
    qf::CarryReadStates(channel.items(), refreshed);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    ScratchFolder(); // made before the clean-up is registered, so it outlives it
    std::atexit([] {
        std::error_code ignored;
        std::filesystem::remove_all(ScratchFolder(), ignored);
    });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::filesystem::path input = ScratchFolder() / "input.xml";
    std::ofstream(input, std::ios::binary | std::ios::trunc) << bytes;

    qf::XmlDocument fromFile;
    if (fromFile.LoadFile(qf::FromFsPath(input))) {
        ReadAndStamp(fromFile);
    }
    qf::XmlDocument fromText;
    if (fromText.LoadText(qf::Utf8ToUtf16(bytes), false)) {
        ReadAndStamp(fromText);
    }
    return 0;
}
