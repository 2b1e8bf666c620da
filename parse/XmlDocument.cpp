#include "parse/XmlDocument.h"

#include "parse/Charset.h"
#include "parse/FeedSniff.h"
#include "platform/AtomicFile.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/FsPath.h"
#include "platform/Text.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <filesystem>
#include <libxml/SAX2.h>
#include <libxml/dict.h>
#include <libxml/entities.h>
#include <libxml/hash.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlsave.h>
#include <optional>
#include <unordered_map>

namespace qf {

namespace {

// Never XML_PARSE_NOENT: with it the parser reads local files that external entities name.
// Internal entities stay reference nodes and are expanded when text is read.
constexpr int kParseOptions = XML_PARSE_NONET;

// Whatever the entities of a document expand to, its readable text (every text and attribute
// value, entities expanded) may not exceed this many times its own size, nor this floor.
constexpr std::size_t kEntityAmplification = 4;
constexpr std::size_t kExpandedTextFloor = std::size_t{8} * 1024 * 1024;

constexpr std::u16string_view kDeclarationStart = u"<?xml ";
constexpr std::u16string_view kDeclarationEnd = u"?>";
constexpr std::u16string_view kEncodingOpening = u"encoding=\"";

struct FreeParserContext {
    void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
};
struct FreeDoc {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
struct FreeBuffer {
    void operator()(xmlBuffer* buffer) const { xmlBufferFree(buffer); }
};
using DocumentPtr = std::unique_ptr<xmlDoc, FreeDoc>;

xmlParserInputPtr RefuseExternalEntity(const char*, const char*, xmlParserCtxtPtr) {
    return nullptr;
}

// The external entity loader is process-wide, so it is installed once, before any document
// exists, and never changed.
bool SetUpLibrary() {
    static const bool ready = [] {
        xmlInitParser();
        xmlSetExternalEntityLoader(RefuseExternalEntity);
        return xmlHasFeature(XML_WITH_THREAD) != 0;
    }();
    return ready;
}

// Parse errors are dropped (callers only learn that the load failed), except that running out
// of memory fails the parse: the parser would otherwise hand back a silently truncated tree.
void OnParseError(void* context, xmlErrorPtr error) {
    if (error != nullptr && error->code == XML_ERR_NO_MEMORY && context != nullptr) {
        static_cast<xmlParserCtxtPtr>(context)->wellFormed = 0;
    }
}

// The tree builder stops growing a text node at ten million bytes unless the parser runs in its
// "huge" mode, which would also switch off its guards against entity expansion and deep
// nesting. Long texts are legitimate, so only the text builder sees the huge mode.
void KeepLongText(void* context, const xmlChar* text, int length) {
    auto* parser = static_cast<xmlParserCtxtPtr>(context);
    const int options = parser->options;
    parser->options |= XML_PARSE_HUGE;
    xmlSAX2Characters(context, text, length);
    parser->options = options;
}

void IgnoreError(void*, xmlErrorPtr) {}

// Keeps the library's error messages off standard error on this thread while it lives.
class SilentErrors {
public:
    SilentErrors() : handler_(xmlStructuredError), context_(xmlStructuredErrorContext) {
        xmlSetStructuredErrorFunc(nullptr, IgnoreError);
    }
    ~SilentErrors() { xmlSetStructuredErrorFunc(context_, handler_); }
    SilentErrors(const SilentErrors&) = delete;
    SilentErrors& operator=(const SilentErrors&) = delete;

private:
    xmlStructuredErrorFunc handler_;
    void* context_;
};

std::string_view View(const xmlChar* text) {
    return text == nullptr ? std::string_view()
                           : std::string_view(reinterpret_cast<const char*>(text));
}

const xmlChar* XmlChars(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

std::u16string FromUtf8(const xmlChar* text) {
    return Utf8ToUtf16(View(text));
}

// "prefix:local" of an element or attribute.
void AppendQualifiedName(std::u16string& out, const xmlNs* ns, const xmlChar* local) {
    if (ns != nullptr && ns->prefix != nullptr) {
        AppendUtf16(out, View(ns->prefix));
        out.push_back(u':');
    }
    AppendUtf16(out, View(local));
}

// A quick test before the exact one: an ASCII name without prefix is compared as it is held,
// without decoding it. Anything else may still be equal.
bool QualifiedNameMayEqual(const xmlNs* ns, const xmlChar* local, std::string_view utf8Name) {
    if (ns != nullptr && ns->prefix != nullptr) {
        return true;
    }
    const std::string_view name = View(local);
    return std::ranges::any_of(name, [](char c) { return (c & 0x80) != 0; }) ||
           EqualsIgnoreCase(name, utf8Name);
}

bool QualifiedNameIs(const xmlNode* node, std::string_view name) {
    const std::string_view local = View(node->name);
    if (node->ns == nullptr || node->ns->prefix == nullptr) {
        return name == local;
    }
    const std::string_view prefix = View(node->ns->prefix);
    return name.size() == prefix.size() + 1 + local.size() && name.starts_with(prefix) &&
           name[prefix.size()] == ':' && name.ends_with(local);
}

// The parsed replacement of the entity a reference node stands for, if it was parsed.
const xmlNode* EntityContent(const xmlNode* reference) {
    const xmlNode* entity = reference->children;
    return entity != nullptr && entity->type == XML_ENTITY_DECL ? entity->children : nullptr;
}

// Text and CDATA of a node list and everything below it, entity references expanded; comments,
// processing instructions and the document type are not text.
void AppendDescendantText(std::u16string& out, const xmlNode* node) {
    for (; node != nullptr; node = node->next) {
        switch (node->type) {
        case XML_TEXT_NODE:
        case XML_CDATA_SECTION_NODE:
            AppendUtf16(out, View(node->content));
            break;
        case XML_ELEMENT_NODE:
            AppendDescendantText(out, node->children);
            break;
        case XML_ENTITY_REF_NODE:
            AppendDescendantText(out, EntityContent(node));
            break;
        default:
            break;
        }
    }
}

// Measures how much text a document yields with its entities expanded, so that a document
// built to expand a small input into gigabytes of text is refused before anything reads it.
class ExpansionMeter {
public:
    explicit ExpansionMeter(std::size_t limit) : limit_(limit) {}

    bool Fits(const xmlDoc* document) { return Measure(document->children) <= limit_; }

private:
    static constexpr std::size_t kMeasuring = SIZE_MAX;

    // Sizes saturate just above the limit, so that no sum can overflow.
    std::size_t Add(std::size_t a, std::size_t b) const { return std::min(a + b, limit_ + 1); }

    std::size_t Measure(const xmlNode* node) {
        std::size_t total = 0;
        for (; node != nullptr && total <= limit_; node = node->next) {
            switch (node->type) {
            case XML_TEXT_NODE:
            case XML_CDATA_SECTION_NODE:
                total = Add(total, View(node->content).size());
                break;
            case XML_ELEMENT_NODE:
                total = Add(total, MeasureAttributes(node->properties));
                total = Add(total, Measure(node->children));
                break;
            case XML_ENTITY_REF_NODE:
                total = Add(total, MeasureEntity(node->children));
                break;
            default:
                break;
            }
        }
        return total;
    }

    std::size_t MeasureAttributes(const xmlAttr* attribute) {
        std::size_t total = 0;
        for (; attribute != nullptr; attribute = attribute->next) {
            total = Add(total, Measure(attribute->children));
        }
        return total;
    }

    // Each entity is measured once however often it is referenced; a reference back into an
    // entity still being measured counts as endless.
    std::size_t MeasureEntity(const xmlNode* entity) {
        if (entity == nullptr || entity->type != XML_ENTITY_DECL) {
            return 0;
        }
        const auto [it, inserted] = sizes_.try_emplace(entity, kMeasuring);
        if (!inserted) {
            return it->second == kMeasuring ? limit_ + 1 : it->second;
        }
        const std::size_t size = Measure(entity->children);
        sizes_[entity] = size;
        return size;
    }

    std::size_t limit_;
    std::unordered_map<const xmlNode*, std::size_t> sizes_;
};

bool DeclaresEntities(const xmlDoc* document) {
    const xmlDtd* subset = document->intSubset;
    return subset != nullptr && subset->entities != nullptr &&
           xmlHashSize(static_cast<xmlHashTablePtr>(subset->entities)) > 0;
}

bool ExpansionIsBounded(const xmlDoc* document, std::size_t inputSize) {
    if (!DeclaresEntities(document)) {
        return true;
    }
    const std::size_t limit =
        std::max(kExpandedTextFloor,
                 std::min(inputSize, SIZE_MAX / kEntityAmplification) * kEntityAmplification);
    return ExpansionMeter(limit).Fits(document);
}

// Parses bytes held in memory. `encoding` forces a character set; null lets the parser follow
// the byte-order mark and the declaration.
DocumentPtr Parse(std::string_view bytes, const char* encoding, int extraOptions) {
    if (bytes.size() > static_cast<std::size_t>(INT_MAX)) {
        return nullptr;
    }
    SilentErrors silent;
    std::unique_ptr<xmlParserCtxt, FreeParserContext> parser(xmlNewParserCtxt());
    if (parser == nullptr) {
        return nullptr;
    }
    parser->sax->serror = OnParseError;
    parser->sax->characters = KeepLongText;
    parser->sax->ignorableWhitespace = KeepLongText;
    DocumentPtr document(xmlCtxtReadMemory(parser.get(), bytes.data(),
                                           static_cast<int>(bytes.size()), nullptr, encoding,
                                           kParseOptions | extraOptions));
    if (document != nullptr && !ExpansionIsBounded(document.get(), bytes.size())) {
        document.reset();
    }
    return document;
}

bool IsXmlSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The encoding named by the XML declaration that opens `bytes`, if there is one. Only called
// once the parser accepted the bytes, so the declaration is well formed.
std::optional<std::string> DeclaredEncoding(std::string_view bytes) {
    constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";
    if (bytes.starts_with(kUtf8Bom)) {
        bytes.remove_prefix(kUtf8Bom.size());
    }
    if (!bytes.starts_with("<?xml") || bytes.size() < 6 || !IsXmlSpace(bytes[5])) {
        return std::nullopt;
    }
    std::string_view declaration = bytes.substr(0, bytes.find("?>"));
    const std::size_t name = declaration.find("encoding");
    if (name == std::string_view::npos) {
        return std::nullopt;
    }
    declaration.remove_prefix(name + 8);
    const std::size_t open = declaration.find_first_of("\"'");
    if (open == std::string_view::npos) {
        return std::nullopt;
    }
    const char quote = declaration[open];
    declaration.remove_prefix(open + 1);
    return std::string(declaration.substr(0, declaration.find(quote)));
}

// Saving writes the document in the encoding its declaration names, so the tree's notion of
// its encoding is kept equal to the declaration.
void SetEncoding(xmlDoc* document, const std::optional<std::string>& encoding) {
    xmlFree(const_cast<xmlChar*>(document->encoding));
    document->encoding = encoding ? xmlStrdup(XmlChars(*encoding)) : nullptr;
}

// The document as the bytes of its file: in the encoding its declaration names, or in UTF-8
// under a declaration that names none, as the declaration of a new document does.
std::optional<std::string> Serialise(xmlDoc* document) {
    SilentErrors silent;
    const auto* encoding = reinterpret_cast<const char*>(document->encoding);
    const std::unique_ptr<xmlBuffer, FreeBuffer> buffer(xmlBufferCreate());
    if (buffer == nullptr) {
        return std::nullopt;
    }
    xmlSaveCtxtPtr context = xmlSaveToBuffer(buffer.get(), encoding != nullptr ? encoding : "UTF-8",
                                             encoding != nullptr ? 0 : XML_SAVE_NO_DECL);
    if (context == nullptr) {
        return std::nullopt;
    }
    const long written = xmlSaveDoc(context, document);
    if (xmlSaveClose(context) < 0 || written < 0) {
        return std::nullopt;
    }
    std::string bytes = encoding != nullptr ? "" : "<?xml version=\"1.0\"?>\n";
    bytes.append(reinterpret_cast<const char*>(xmlBufferContent(buffer.get())),
                 static_cast<std::size_t>(xmlBufferLength(buffer.get())));
    return bytes;
}

// A document starts with the same fields as a node (type, name, children, siblings), and
// libxml2 itself passes one for the other: the root node is the document seen that way.
xmlNode* AsNode(xmlDoc* document) {
    return reinterpret_cast<xmlNode*>(document);
}

// The code page of a double-quoted encoding in a declaration's text; a single-quoted or spaced
// one is not recognised.
int32_t DeclarationCodePage(std::u16string_view declaration) {
    const std::size_t open = declaration.find(kEncodingOpening);
    if (open == std::u16string_view::npos) {
        return 0;
    }
    const std::size_t nameStart = open + kEncodingOpening.size();
    const std::size_t close = declaration.find(u'"', nameStart);
    if (close == std::u16string_view::npos) {
        return 0;
    }
    return CharsetToCodePage(WString(declaration.substr(nameStart, close - nameStart)));
}

// The next node after `node` in document order, entering elements only (the replacement of an
// entity reference is not part of the tree proper); null after the last one.
xmlNode* NextInDocumentOrder(xmlNode* node) {
    if (node->type == XML_ELEMENT_NODE && node->children != nullptr) {
        return node->children;
    }
    while (node->next == nullptr) {
        node = node->parent;
        if (node == nullptr || node->type == XML_DOCUMENT_NODE) {
            return nullptr;
        }
    }
    return node->next;
}

bool IsValidName(const std::string& name) {
    return !name.empty() && name.find('\0') == std::string::npos &&
           xmlValidateName(XmlChars(name), 0) == 0;
}

} // namespace

void XmlDocument::FreeDocument::operator()(xmlDoc* document) const {
    xmlFreeDoc(document);
}

void XmlDocument::Adopt(xmlDoc* document, int32_t declaredCodePage) {
    document_.reset(document);
    declaredCodePage_ = declaredCodePage;
}

XmlDocument::XmlDocument() : ready_(SetUpLibrary()) {}

XmlDocument::~XmlDocument() = default;

bool XmlDocument::LoadFile(std::u16string_view path) {
    // Files are parsed from memory, and the parser takes no more than INT_MAX bytes.
    const std::optional<std::string> bytes = ReadFileBytes(path);
    return bytes && bytes->size() <= INT_MAX && LoadBytes(*bytes);
}

bool XmlDocument::LoadBytes(std::string_view bytes) {
    if (!ready_ || !LooksLikeFeedFile(bytes)) {
        return false;
    }
    DocumentPtr document = Parse(bytes, nullptr, 0);
    if (document == nullptr) {
        return false;
    }
    SetEncoding(document.get(), DeclaredEncoding(bytes));
    Adopt(document.release(), 0);
    return true;
}

bool XmlDocument::LoadText(std::u16string_view text, bool requireFeedRoot) {
    if (!ready_ || text.empty()) {
        return false;
    }
    int32_t codePage = 0;
    const std::size_t start = text.find(kDeclarationStart);
    if (start != std::u16string_view::npos) {
        const std::size_t inside = start + kDeclarationStart.size();
        const std::size_t end = text.find(kDeclarationEnd, inside);
        // The text is UTF-16 already, so a declared encoding would only contradict it.
        if (end != std::u16string_view::npos) {
            codePage = DeclarationCodePage(text.substr(inside, end - inside));
            text.remove_prefix(end + kDeclarationEnd.size());
        }
    } else if (requireFeedRoot && !ContainsFeedRootWord(text)) {
        return false;
    }
    DocumentPtr document = Parse(Utf16ToUtf8(text), "UTF-8", XML_PARSE_IGNORE_ENC);
    if (document == nullptr) {
        return false;
    }
    SetEncoding(document.get(), std::nullopt);
    Adopt(document.release(), codePage);
    return true;
}

bool XmlDocument::Save(std::u16string_view path) const {
    if (!ready_ || path.empty() || document_ == nullptr) {
        return false;
    }
    CreateParentDirectory(path); // a folder that cannot be made fails the write below
    const std::optional<std::string> bytes = Serialise(document_.get());
    return bytes && WriteFileAtomically(ToFsPath(path), *bytes);
}

bool XmlDocument::NewDocument() {
    if (!ready_) {
        return false;
    }
    xmlDoc* document = xmlNewDoc(reinterpret_cast<const xmlChar*>("1.0"));
    if (document == nullptr) {
        return false;
    }
    // Names interned in a dictionary, as a parsed document has them: a built document repeats
    // a few names many times.
    document->dict = xmlDictCreate();
    Adopt(document, 0);
    return true;
}

XmlNode XmlDocument::RootNode() const {
    return XmlNode(AsNode(document_.get()));
}

XmlNode XmlNode::firstElementChild() const {
    if (node_ == nullptr || (node_->type != XML_ELEMENT_NODE && node_->type != XML_DOCUMENT_NODE)) {
        return {};
    }
    for (xmlNode* child = node_->children; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE) {
            return XmlNode(child);
        }
    }
    return {};
}

XmlNode XmlNode::nextSibling() const {
    return node_ == nullptr ? XmlNode() : XmlNode(node_->next);
}

XmlNode::Children XmlNode::children() const {
    return {firstElementChild(), std::nullopt};
}

XmlNode::Children XmlNode::children(std::u16string_view name) const {
    return {firstElementChild(), name};
}

XmlNode::Children::Iterator::Iterator(XmlNode node, std::optional<std::u16string_view> name)
    : node_(node), name_(name) {
    SkipUnnamed();
}

XmlNode::Children::Iterator& XmlNode::Children::Iterator::operator++() {
    node_ = node_.nextSibling();
    SkipUnnamed();
    return *this;
}

void XmlNode::Children::Iterator::SkipUnnamed() {
    while (name_ && node_ && !node_.isNamed(*name_)) {
        node_ = node_.nextSibling();
    }
}

std::u16string XmlNode::name() const {
    std::u16string name;
    if (node_ == nullptr) {
        return name;
    }
    switch (node_->type) {
    case XML_ELEMENT_NODE:
        AppendQualifiedName(name, node_->ns, node_->name);
        break;
    case XML_TEXT_NODE:
        name = u"#text";
        break;
    case XML_CDATA_SECTION_NODE:
        name = u"#cdata-section";
        break;
    case XML_COMMENT_NODE:
        name = u"#comment";
        break;
    case XML_DOCUMENT_NODE:
        name = u"#document";
        break;
    case XML_PI_NODE:
    case XML_ENTITY_REF_NODE:
    case XML_DTD_NODE:
        AppendUtf16(name, View(node_->name));
        break;
    default:
        break;
    }
    return name;
}

bool XmlNode::isNamed(std::u16string_view name) const {
    return EqualsIgnoreCase(this->name(), name);
}

std::u16string XmlNode::text() const {
    std::u16string text;
    if (node_ == nullptr) {
        return text;
    }
    switch (node_->type) {
    case XML_ELEMENT_NODE:
    case XML_DOCUMENT_NODE:
        if (node_->children == nullptr || node_->children->type != XML_ELEMENT_NODE) {
            AppendDescendantText(text, node_->children);
        }
        break;
    case XML_ENTITY_REF_NODE:
        AppendDescendantText(text, EntityContent(node_));
        break;
    case XML_TEXT_NODE:
    case XML_CDATA_SECTION_NODE:
    case XML_COMMENT_NODE:
    case XML_PI_NODE:
        AppendUtf16(text, View(node_->content));
        break;
    default:
        break;
    }
    return text;
}

std::optional<std::u16string> XmlNode::attribute(std::u16string_view name) const {
    if (node_ == nullptr || node_->type != XML_ELEMENT_NODE) {
        return std::nullopt;
    }
    const std::string utf8Name = Utf16ToUtf8(name);
    std::u16string candidate;
    for (const xmlAttr* attribute = node_->properties; attribute != nullptr;
         attribute = attribute->next) {
        if (!QualifiedNameMayEqual(attribute->ns, attribute->name, utf8Name)) {
            continue;
        }
        candidate.clear();
        AppendQualifiedName(candidate, attribute->ns, attribute->name);
        if (EqualsIgnoreCase(candidate, name)) {
            std::u16string value;
            AppendDescendantText(value, attribute->children);
            return value;
        }
    }
    return std::nullopt;
}

bool XmlDocument::SetAttribute(XmlNode node, std::u16string_view name, const WString& value) {
    xmlNode* element = node.node_;
    if (element == nullptr || element->type != XML_ELEMENT_NODE || value.isNull()) {
        return false;
    }
    const std::string xmlName = Utf16ToUtf8(name);
    if (!IsValidName(xmlName)) {
        return false;
    }
    // A store file sets some hundred thousand attributes; one buffer per thread saves as many
    // allocations.
    thread_local std::string xmlValue;
    xmlValue.clear();
    AppendUtf8(xmlValue, value.view(), Utf8Use::kXml);
    return xmlSetProp(element, XmlChars(xmlName), XmlChars(xmlValue)) != nullptr;
}

XmlNode XmlDocument::CreateChildElement(XmlNode parent, std::u16string_view name) {
    xmlNode* owner = parent.node_;
    if (owner == nullptr) {
        return {};
    }
    // A document holds one top-level element.
    if (owner->type == XML_DOCUMENT_NODE ? xmlDocGetRootElement(owner->doc) != nullptr
                                         : owner->type != XML_ELEMENT_NODE) {
        return {};
    }
    const std::string xmlName = Utf16ToUtf8(name);
    if (!IsValidName(xmlName)) {
        return {};
    }
    xmlNode* child = xmlNewDocNode(owner->doc, nullptr, XmlChars(xmlName), nullptr);
    if (child == nullptr) {
        return {};
    }
    if (xmlAddChild(owner, child) == nullptr) {
        xmlFreeNode(child);
        return {};
    }
    return XmlNode(child);
}

std::vector<XmlNode> XmlDocument::ElementsByTagName(std::u16string_view name) const {
    std::vector<XmlNode> elements;
    if (document_ == nullptr) {
        return elements;
    }
    const std::string wanted = Utf16ToUtf8(name);
    for (xmlNode* node = document_->children; node != nullptr; node = NextInDocumentOrder(node)) {
        if (node->type == XML_ELEMENT_NODE && QualifiedNameIs(node, wanted)) {
            elements.push_back(XmlNode(node));
        }
    }
    return elements;
}

bool XmlDocument::ReadDeclaredEncoding(std::u16string& out) const {
    const xmlDoc* document = document_.get();
    if (document == nullptr || document->encoding == nullptr) {
        return false;
    }
    out = FromUtf8(document->encoding);
    return true;
}

bool XmlDocument::SniffFeedFile(std::u16string_view path) {
    const std::optional<std::string> bytes = ReadFileBytes(path);
    return bytes && bytes->size() <= INT_MAX && LooksLikeFeedFile(*bytes);
}

} // namespace qf
