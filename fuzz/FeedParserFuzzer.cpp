// Feeds arbitrary bytes to the feed readers, loaded both as a file and as text: whatever the
// document, reading it, marking its stories and stamping their read states back must neither
// crash nor hang.
#include "fuzz/FuzzDocuments.h"
#include "model/Channel.h"
#include "parse/FeedReader.h"
#include "parse/ReadState.h"
#include "parse/XmlDocument.h"
#include "platform/Text.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace {

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
    qf::fuzz::PrepareScratchFolder();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    qf::fuzz::LoadBothWays(data, size, ReadAndStamp);
    return 0;
}
