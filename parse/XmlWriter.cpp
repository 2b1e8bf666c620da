#include "parse/XmlWriter.h"

#include "platform/Text.h"

#include <charconv>
#include <iterator>

namespace qf {

namespace {

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\"?>\n";
constexpr std::string_view kUtf8Declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr std::size_t kIndentWidth = 2;

// Markup characters become entities, as the XML library's serialiser writes them, so that both
// write the same bytes. In an attribute value so do the double quote, tabs and line breaks,
// which a reader would otherwise take for the end of the value or for spaces.
std::string_view Escaped(char c, bool inAttribute) {
    switch (c) {
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '&':
        return "&amp;";
    case '\r':
        return "&#13;";
    case '"':
        return inAttribute ? "&quot;" : "";
    case '\n':
        return inAttribute ? "&#10;" : "";
    case '\t':
        return inAttribute ? "&#9;" : "";
    default:
        return "";
    }
}

void AppendEscaped(std::string& out, std::string_view utf8, bool inAttribute) {
    for (const char c : utf8) {
        const std::string_view escaped = Escaped(c, inAttribute);
        if (escaped.empty()) {
            out.push_back(c);
        } else {
            out += escaped;
        }
    }
}

} // namespace

XmlWriter::XmlWriter(Layout layout)
    : layout_(layout), text_(layout == Layout::kIndented ? kUtf8Declaration : kDeclaration) {}

void XmlWriter::CloseStartTag() {
    if (startTagOpen_) {
        text_.push_back('>');
        startTagOpen_ = false;
    }
}

void XmlWriter::StartLine(std::size_t depth) {
    if (layout_ == Layout::kIndented) {
        text_.push_back('\n');
        text_.append(depth * kIndentWidth, ' ');
    }
}

void XmlWriter::StartElement(std::u16string_view name) {
    CloseStartTag();
    std::string utf8;
    AppendUtf8(utf8, name, Utf8Use::kXml);
    // The root follows the declaration's own line break.
    if (!open_.empty()) {
        StartLine(open_.size());
    }
    text_.push_back('<');
    text_ += utf8;
    open_.push_back(std::move(utf8));
    startTagOpen_ = true;
    holdsText_ = false;
}

void XmlWriter::Attribute(std::u16string_view name, const WString& value) {
    if (!value.isNull()) {
        Attribute(name, value.view());
    }
}

bool XmlWriter::StartAttribute(std::u16string_view name) {
    if (!startTagOpen_) {
        return false;
    }
    text_.push_back(' ');
    AppendUtf8(text_, name, Utf8Use::kXml);
    text_ += "=\"";
    return true;
}

void XmlWriter::Attribute(std::u16string_view name, std::u16string_view value) {
    if (!StartAttribute(name)) {
        return;
    }
    scratch_.clear();
    AppendUtf8(scratch_, value, Utf8Use::kXml);
    AppendEscaped(text_, scratch_, /*inAttribute=*/true);
    text_.push_back('"');
}

void XmlWriter::Attribute(std::u16string_view name, int32_t decimal) {
    if (!StartAttribute(name)) {
        return;
    }
    char digits[16];
    auto* const end = std::to_chars(std::begin(digits), std::end(digits), decimal).ptr;
    text_.append(digits, end);
    text_.push_back('"');
}

void XmlWriter::EndAttributes() {
    CloseStartTag();
}

void XmlWriter::Text(std::u16string_view text) {
    if (open_.empty()) {
        return;
    }
    CloseStartTag();
    scratch_.clear();
    AppendUtf8(scratch_, text, Utf8Use::kXml);
    AppendEscaped(text_, scratch_, /*inAttribute=*/false);
    holdsText_ = true;
}

void XmlWriter::EndElement() {
    if (open_.empty()) {
        return;
    }
    if (startTagOpen_) {
        text_ += "/>";
        startTagOpen_ = false;
    } else {
        if (!holdsText_) {
            StartLine(open_.size() - 1);
        }
        text_ += "</";
        text_ += open_.back();
        text_.push_back('>');
    }
    open_.pop_back();
    holdsText_ = false;
}

std::string XmlWriter::Finish() {
    while (!open_.empty()) {
        EndElement();
    }
    text_.push_back('\n');
    return std::move(text_);
}

} // namespace qf
