#pragma once

#include "platform/WString.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qf {

// Writes a new XML document straight to text. In the compact layout the bytes are those
// XmlDocument::Save writes for the same document built node by node (UTF-8 under a declaration
// without encoding, no added white space), but without building the tree: a store of thousands
// of channels is saved in a fraction of the time. The indented layout is for files other programs
// read: the declaration names UTF-8, and every start tag, and every end tag of an element that
// holds no text, begins a line indented by two spaces a level. Element and attribute names are
// the caller's own constants and must be valid XML names; an element takes each attribute name
// once.
class XmlWriter {
public:
    enum class Layout { kCompact, kIndented };

    explicit XmlWriter(Layout layout = Layout::kCompact);

    void StartElement(std::u16string_view name);
    // Attributes belong to the element started last, before anything is put inside it. A null
    // value writes nothing.
    void Attribute(std::u16string_view name, const WString& value);
    void Attribute(std::u16string_view name, std::u16string_view value);
    void Attribute(std::u16string_view name, const char16_t* value) {
        Attribute(name, std::u16string_view(value));
    }
    void Attribute(std::u16string_view name, int32_t decimal);
    // Ends the start tag of the element started last: it keeps an end tag of its own even when
    // nothing is put inside it.
    void EndAttributes();
    // Text inside the element started last.
    void Text(std::u16string_view text);
    void EndElement();

    // Ends every element still open and hands over the document's text; the writer is spent.
    std::string Finish();

private:
    void CloseStartTag();
    void StartLine(std::size_t depth);
    bool StartAttribute(std::u16string_view name);

    Layout layout_;
    std::string text_;
    std::vector<std::string> open_;
    // The last start tag still lacks its ">": it may yet end as an empty element, "<name/>".
    bool startTagOpen_ = false;
    // The element started last holds text, so its end tag follows the text on the same line.
    bool holdsText_ = false;
    std::string scratch_;
};

} // namespace qf
