#pragma once

#include "platform/WString.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// libxml2's node and document, named here only so that this header need not include libxml2;
// the reserved-looking names are libxml2's own.
struct _xmlNode; // NOLINT(bugprone-reserved-identifier)
struct _xmlDoc;  // NOLINT(bugprone-reserved-identifier)

namespace qf {

// A node of an XmlDocument. The handle does not own the node: it stays valid while its document
// lives and until the document is loaded again or started anew. An empty handle means "no node";
// every query of it answers empty. Reading goes through the node, so a reader needs nothing but
// the node it was handed; changing the tree goes through the document (see SetAttribute).
class XmlNode {
public:
    class Children;

    XmlNode() = default;
    explicit operator bool() const { return node_ != nullptr; }
    friend bool operator==(XmlNode, XmlNode) = default;

    // "prefix:local" for elements; "#text", "#cdata-section", "#comment" and "#document" for
    // those nodes; the target of a processing instruction and the name of an entity reference.
    std::u16string name() const;
    // Whether name() equals `name` ignoring case, as the readers match every name.
    bool isNamed(std::u16string_view name) const;

    // The element's text: empty when its first child is an element, otherwise all descendant
    // text (CDATA included, entities expanded) joined. An element that starts with markup thus
    // reads as empty, while the same element with whitespace before that markup reads as the
    // text of everything inside it.
    std::u16string text() const;

    // The value of the first attribute, in document order, whose name equals `name` ignoring
    // case; none for a node that is no element.
    std::optional<std::u16string> attribute(std::u16string_view name) const;

    // The first child that is an element, passing over declarations, comments and whitespace.
    XmlNode firstElementChild() const;
    // The next sibling, whatever kind of node it is.
    XmlNode nextSibling() const;

    // The children as the readers have always walked them: from the first element child on,
    // every following sibling whatever its kind, in document order. What comes before the first
    // element (whitespace, comments) is passed over; what follows it is visited under the name
    // name() gives it, so text and comments never pass for an element a reader seeks.
    Children children() const;
    // The same walk, keeping only the nodes whose name equals `name` ignoring case.
    Children children(std::u16string_view name) const;

private:
    friend class XmlDocument;
    explicit XmlNode(_xmlNode* node) : node_(node) {}
    _xmlNode* node_ = nullptr;
};

// The range of XmlNode::children, for range-for. It keeps the name it filters by as a view, so
// it is meant for the loop that names it, not to be kept.
class XmlNode::Children {
public:
    class Iterator {
    public:
        using value_type = XmlNode;
        using difference_type = std::ptrdiff_t;

        XmlNode operator*() const { return node_; }
        Iterator& operator++();
        void operator++(int) { ++*this; }
        bool operator==(std::default_sentinel_t) const { return !node_; }

    private:
        friend class Children;
        Iterator(XmlNode node, std::optional<std::u16string_view> name);
        void SkipUnnamed();

        XmlNode node_;
        std::optional<std::u16string_view> name_;
    };

    Iterator begin() const { return {first_, name_}; }
    std::default_sentinel_t end() const { return {}; }

private:
    friend class XmlNode;
    Children(XmlNode first, std::optional<std::u16string_view> name) : first_(first), name_(name) {}

    XmlNode first_;
    std::optional<std::u16string_view> name_;
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

    // The code page of the encoding that the declaration LoadText cut off named; 0 when it named
    // none, and for a document loaded from bytes (their declaration decoded them) or started
    // anew. Readers start their stories' code page from it.
    int32_t declaredCodePage() const { return declaredCodePage_; }

    // Reads and parses a file, after SniffFeedFile accepted it. The bytes are decoded as the
    // file's own declaration or byte-order mark says.
    bool LoadFile(std::u16string_view path);
    // The same for the bytes of a whole file already read, so that what is checked is exactly
    // what is then written elsewhere.
    bool LoadBytes(std::string_view bytes);

    // Parses a document held as text. An XML declaration is cut off first and a double-quoted
    // encoding in it sets declaredCodePage(); without a declaration and with `requireFeedRoot`, the
    // text must name one of the feed roots somewhere.
    bool LoadText(std::u16string_view text, bool requireFeedRoot);

    // Writes the document atomically in its declared encoding (UTF-8 when it declares none),
    // creating missing folders of the path.
    bool Save(std::u16string_view path) const;

    // Starts an empty document with the declaration version 1.0 and no encoding.
    bool NewDocument();

    // The document itself: its firstElementChild() is the top-level element.
    XmlNode RootNode() const;

    // Changes to the tree are made through the document, so that only code holding it writable
    // can make them; nodes alone only read.
    // Sets (or replaces) an attribute of an element; a null value sets nothing and fails.
    bool SetAttribute(XmlNode node, std::u16string_view name, const WString& value);
    // Appends a new element without namespace to an element or to the document.
    XmlNode CreateChildElement(XmlNode parent, std::u16string_view name);

    // Every element of the document whose qualified name is exactly `name`, in document order.
    std::vector<XmlNode> ElementsByTagName(std::u16string_view name) const;

    // The encoding named by the XML declaration of the loaded file.
    bool ReadDeclaredEncoding(std::u16string& out) const;

    // The quick test made before parsing a file: it must hold an XML declaration or one of the
    // words "rdf:RDF", "rss", "feed", "opml" (case-sensitive, anywhere).
    static bool SniffFeedFile(std::u16string_view path);

private:
    struct FreeDocument {
        void operator()(_xmlDoc* document) const;
    };

    // Takes a freshly parsed or built document in place of the current one.
    void Adopt(_xmlDoc* document, int32_t declaredCodePage);

    bool ready_ = false;
    std::unique_ptr<_xmlDoc, FreeDocument> document_;
    int32_t declaredCodePage_ = 0;
};

} // namespace qf
