// Feeds arbitrary bytes to OPML import as a file the user picked, then merges what it found into
// a store that already holds a channel, as the add-channel wizard does: no input may crash or
// hang either step.
#include "model/ChannelStore.h"
#include "parse/OpmlImport.h"
#include "platform/AtomicFile.h"

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
                    ("quillfeed-opml-fuzz-" + std::to_string(::getpid()));
        std::filesystem::create_directories(path);
        return path;
    }();
    return folder;
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
    const std::filesystem::path input = ScratchFolder() / "import.opml";
    std::ofstream(input, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));

    qf::ChannelStore imported;
    if (qf::ImportOpml(qf::OpmlSource(qf::FromFsPath(input)), imported)) {
        qf::ChannelStore store;
        store.AddChannel(qf::WString(u"http://example.com/rss"), qf::WString(u"Existing"));
        store.MergeCategories(imported.categories());
    }
    return 0;
}
