#include "store/OpmlImport.h"

#include "parse/Charset.h"
#include "parse/XmlDocument.h"
#include "platform/Files.h"
#include "store/ChannelStoreFile.h"

#include <cstddef>
#include <optional>

extern const unsigned char kResource_ChannelDirectory_opml[];
extern const std::size_t kResource_ChannelDirectory_opml_size;

namespace qf {

namespace {

// The source as text, converted from the default code page as the program reads every file it
// did not download; no text for a missing, unreadable or empty source.
std::optional<std::u16string> SourceText(const OpmlSource& source) {
    if (const auto* path = std::get_if<std::u16string>(&source)) {
        return FileExists(*path) ? ReadFileAsText(*path) : std::nullopt;
    }
    std::u16string text = BytesToWide(ChannelDirectoryText(), 0);
    return text.empty() ? std::nullopt : std::optional<std::u16string>(std::move(text));
}

} // namespace

bool ImportOpml(const OpmlSource& source, ChannelStore& target) {
    const std::optional<std::u16string> text = SourceText(source);
    if (!text || text->empty()) {
        return false;
    }
    XmlDocument document;
    return document.LoadText(*text, false) && ReadStoreDocument(document, target);
}

std::string_view ChannelDirectoryText() {
    return {reinterpret_cast<const char*>(kResource_ChannelDirectory_opml),
            kResource_ChannelDirectory_opml_size};
}

} // namespace qf
