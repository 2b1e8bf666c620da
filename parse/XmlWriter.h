#pragma once

#include "platform/WString.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qf {

// Appends UTF-8 text as the value of a double-quoted attribute: markup characters as entities,
// tabs and line breaks as character references (as the XML library's serialiser writes them).
void AppendEscapedAttribute(std::string& out, std::string_view utf8);

// Writes a new XML document straight to text, byte for byte as XmlDocument::Save writes the same
// document built node by node (UTF-8 under a declaration without encoding, no added white space),
// but without building the tree: a store of thousands of channels is saved in a fraction of the
// time. Element and attribute names are the caller's own constants and must be valid XML names;
// an element takes each attribute name once.
class XmlWriter {
public:
    XmlWriter();

    void StartElement(std::u16string_view name);
    // Attributes belong to the element started last, before anything is put inside it. A null
    // value writes nothing.
    void Attribute(std::u16string_view name, const WString& value);
    void Attribute(std::u16string_view name, std::u16string_view value);
    void Attribute(std::u16string_view name, const char16_t* value) {
        Attribute(name, std::u16string_view(value));
    }
    void Attribute(std::u16string_view name, int32_t decimal);
    void EndElement();

    // Ends every element still open and hands over the document's text; the writer is spent.
    std::string Finish();

private:
    void CloseStartTag();
    bool StartAttribute(std::u16string_view name);

    std::string text_;
    std::vector<std::string> open_;
    // The last start tag still lacks its ">": it may yet end as an empty element, "<name/>".
    bool startTagOpen_ = false;
    std::string scratch_;
};

} // namespace qf
