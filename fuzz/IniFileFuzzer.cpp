#include "platform/IniFile.h"
#include "platform/Text.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

// Any settings file must parse, and a value set into it must read back unchanged while the lines
// around it stay: the settings are saved into files that other programs edit by hand.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::size_t split = text.find('\0');
    const std::string_view file = text.substr(0, split);
    const std::u16string value =
        split == std::string_view::npos ? u"\\" : qf::Utf8ToUtf16(text.substr(split + 1));

    qf::IniFile ini = qf::IniFile::Parse(file);
    (void)ini.Value("Options", "TextSize");
    ini.SetValue("Options", "StorageVolume", value);
    const qf::IniFile reread = qf::IniFile::Parse(ini.Text());
    if (reread.Value("Options", "StorageVolume") != value) {
        std::abort();
    }
    return 0;
}
