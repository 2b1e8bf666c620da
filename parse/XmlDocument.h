#pragma once

#include "platform/WString.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qf {

// A node of an XmlDocument. The handle does not own the node: it stays valid while its document
// lives and until the document is loaded again or started anew. An empty handle means "no node".
class XmlNode {
public:
    XmlNode() = default;
    explicit operator bool() const { return node_ != nullptr; }
    friend bool operator==(XmlNode, XmlNode) = default;

private:
    friend class XmlDocument;
    explicit XmlNode(void* node) : node_(node) {}
    void* node_ = nullptr;
};

// The attributes of one element, read in document order; empty for a node that has none.
class XmlAttributes {
public:
    XmlAttributes() = default;
    explicit operator bool() const { return static_cast<bool>(element_); }

private:
    friend class XmlDocument;
    explicit XmlAttributes(XmlNode element) : element_(element) {}
    XmlNode element_;
};

// The elements a document-wide search found, in document order, taken one at a time.
class XmlNodeList {
private:
    friend class XmlDocument;
    std::vector<XmlNode> nodes_;
    std::size_t next_ = 0;
};

// One parsed XML document: every feed file, store file and OPML file passes through it. Parsing
// is strict (a malformed document fails), keeps whitespace text, never loads anything named by
// the document itself (external entities, DTDs) and refuses documents whose entities would
// expand to far more text than the document holds. Node names are qualified names ("rdf:RDF").
// A document belongs to one thread at a time; documents on different threads share nothing.
class XmlDocument {
public:
    XmlDocument();
    ~XmlDocument();
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;

    // False when the XML library could not be set up; every load and save then fails.
    bool ready() const { return ready_; }

    // The character set the loaded text declared (see LoadText), or one set since; 0 when unknown.
    int32_t codePage() const { return codePage_; }
    void setCodePage(int32_t codePage) { codePage_ = codePage; }

    // Reads and parses a file, after SniffFeedFile accepted it. The bytes are decoded as the
    // file's own declaration or byte-order mark says.
    bool LoadFile(std::u16string_view path);
    // The same for the bytes of a whole file already read, so that what is checked is exactly
    // what is then written elsewhere.
    bool LoadBytes(std::string_view bytes);

    // Parses a document held as text. An XML declaration is cut off first and a double-quoted
    // encoding in it sets codePage(); without a declaration and with `requireFeedRoot`, the text
    // must name one of the feed roots somewhere.
    bool LoadText(std::u16string_view text, bool requireFeedRoot);

    // Writes the document atomically in its declared encoding (UTF-8 when it declares none),
    // creating missing folders of the path.
    bool Save(std::u16string_view path) const;

    // Starts an empty document with the declaration version 1.0 and no encoding.
    bool NewDocument();

    // The document itself: hand it to FirstElementChild to reach the top-level element.
    XmlNode RootNode() const;
    // The first child that is an element, passing over declarations, comments and whitespace.
    XmlNode FirstElementChild(XmlNode node) const;
    // The next sibling, whatever kind of node it is.
    XmlNode NextSibling(XmlNode node) const;
    // "prefix:local" for elements; "#text", "#cdata-section", "#comment" and "#document" for
    // those nodes; empty for an empty handle.
    std::u16string NodeName(XmlNode node) const;

    // The element's text: empty when its first child is an element, otherwise all descendant
    // text (CDATA included, entities expanded) joined. An element that starts with markup thus
    // reads as empty, while the same element with whitespace before that markup reads as the
    // text of everything inside it.
    std::u16string GetText(XmlNode element) const;

    XmlAttributes Attributes(XmlNode node) const;
    // The value of the first attribute, in document order, whose name equals `name` ignoring
    // case; `out` is left alone when there is none.
    bool GetAttribute(const XmlAttributes& attributes, std::u16string_view name,
                      std::u16string& out) const;
    // Sets (or replaces) an attribute of an element; a null value sets nothing and fails.
    bool SetAttribute(XmlNode node, std::u16string_view name, const WString& value);
    // Appends a new element without namespace to an element or to the document.
    XmlNode CreateChildElement(XmlNode parent, std::u16string_view name);

    // Every element of the document whose qualified name is exactly `name`, in document order.
    XmlNodeList ElementsByTagName(std::u16string_view name) const;
    static std::size_t ListLength(const XmlNodeList& list);
    static XmlNode ListNext(XmlNodeList& list);

    // The encoding named by the XML declaration of the loaded file.
    bool ReadDeclaredEncoding(std::u16string& out) const;
    // Stores the code page that a charset name stands for, and answers it.
    int32_t SetCodePageFromName(const WString& charsetName);

    // The quick test made before parsing a file: it must hold an XML declaration or one of the
    // words "rdf:RDF", "rss", "feed", "opml" (case-sensitive, anywhere).
    static bool SniffFeedFile(std::u16string_view path);

private:
    struct FreeDocument {
        void operator()(void* document) const;
    };

    bool ready_ = false;
    std::unique_ptr<void, FreeDocument> document_;
    int32_t codePage_ = 0;
};

} // namespace qf
