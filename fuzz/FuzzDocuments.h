#pragma once

// Loads a fuzzer's input both ways the program reads XML: as a file (through the quick test and
// the file loader) and as text, handing every document that loads to `use`.

#include "fuzz/FuzzScratch.h"
#include "parse/XmlDocument.h"
#include "platform/FsPath.h"
#include "platform/Text.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qf::fuzz {

template <typename Use> void LoadBothWays(const uint8_t* data, std::size_t size, Use use) {
    XmlDocument fromFile;
    if (fromFile.LoadFile(FromFsPath(WriteScratchFile("input.xml", data, size)))) {
        use(fromFile);
    }
    XmlDocument fromText;
    if (fromText.LoadText(Utf8ToUtf16(std::string_view(reinterpret_cast<const char*>(data), size)),
                          false)) {
        use(fromText);
    }
}

} // namespace qf::fuzz
