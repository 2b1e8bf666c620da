#include "parse/FeedFile.h"

#include "model/Channel.h"
#include "parse/Charset.h"
#include "parse/FeedReader.h"
#include "parse/XmlDocument.h"

namespace qf {

bool LoadFeedFile(std::u16string_view path, Channel& channel, bool takeTitle) {
    XmlDocument document;
    if (!document.LoadFile(path)) {
        return false;
    }
    std::u16string declared;
    if (document.ReadDeclaredEncoding(declared)) {
        const WString encoding(std::move(declared));
        channel.SetEncoding(encoding);
        channel.SetCodePage(CharsetToCodePage(encoding));
    }
    return ParseFeed(document, channel, takeTitle);
}

} // namespace qf
