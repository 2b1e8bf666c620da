// Feeds arbitrary bytes to OPML import as a file the user picked, then merges what it found into
// a store that already holds a channel, as the add-channel wizard does: no input may crash or
// hang either step.
#include "fuzz/FuzzScratch.h"
#include "model/ChannelStore.h"
#include "platform/FsPath.h"
#include "store/OpmlImport.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qf::fuzz::PrepareScratchFolder();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::filesystem::path input = qf::fuzz::WriteScratchFile("import.opml", data, size);

    qf::ChannelStore imported;
    if (qf::ImportOpml(qf::OpmlSource(qf::FromFsPath(input)), imported)) {
        qf::ChannelStore store;
        store.AddChannel(qf::WString(u"http://example.com/rss"), qf::WString(u"Existing"));
        store.MergeCategories(imported.categories());
    }
    return 0;
}
