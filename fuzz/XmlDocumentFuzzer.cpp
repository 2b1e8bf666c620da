// Feeds arbitrary bytes to the XML document layer, both as a file and as text, then walks and
// saves whatever loaded: no input may crash it, hang it or make it read outside the tree.
#include "fuzz/FuzzDocuments.h"
#include "parse/XmlDocument.h"
#include "platform/FsPath.h"
#include "platform/Text.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace {

void Walk(qf::XmlNode node) {
    for (const qf::XmlNode child : node.children()) {
        child.name();
        child.text();
        child.attribute(u"href");
        child.attribute(u"qf_wasRead");
        Walk(child);
    }
}

void Exercise(qf::XmlDocument& doc) {
    Walk(doc.RootNode());
    for (const qf::XmlNode item : doc.ElementsByTagName(u"item")) {
        doc.SetAttribute(item, u"qf_wasRead", qf::WString(u"yes"));
    }
    std::u16string encoding;
    doc.ReadDeclaredEncoding(encoding);
    const std::u16string saved = qf::FromFsPath(qf::fuzz::ScratchFolder() / "saved.xml");
    if (doc.Save(saved)) {
        qf::XmlDocument again;
        again.LoadFile(saved);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qf::fuzz::PrepareScratchFolder();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    qf::fuzz::LoadBothWays(data, size, Exercise);
    return 0;
}
