#include "parse/XmlWriter.h"

#include "platform/Text.h"

#include <charconv>
#include <iterator>

namespace qf {

namespace {

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\"?>\n";

} // namespace

// Written as the XML library's serialiser does, so that both write the same bytes.
void AppendEscapedAttribute(std::string& out, std::string_view utf8) {
    for (const char c : utf8) {
        switch (c) {
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '&':
            out += "&amp;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\n':
            out += "&#10;";
            break;
        case '\r':
            out += "&#13;";
            break;
        case '\t':
            out += "&#9;";
            break;
        default:
            out.push_back(c);
            break;
        }
    }
}

XmlWriter::XmlWriter() : text_(kDeclaration) {}

void XmlWriter::CloseStartTag() {
    if (startTagOpen_) {
        text_.push_back('>');
        startTagOpen_ = false;
    }
}

void XmlWriter::StartElement(std::u16string_view name) {
    CloseStartTag();
    std::string utf8;
    AppendUtf8(utf8, name, Utf8Use::kXml);
    text_.push_back('<');
    text_ += utf8;
    open_.push_back(std::move(utf8));
    startTagOpen_ = true;
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
    AppendEscapedAttribute(text_, scratch_);
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

void XmlWriter::EndElement() {
    if (open_.empty()) {
        return;
    }
    if (startTagOpen_) {
        text_ += "/>";
        startTagOpen_ = false;
    } else {
        text_ += "</";
        text_ += open_.back();
        text_.push_back('>');
    }
    open_.pop_back();
}

std::string XmlWriter::Finish() {
    while (!open_.empty()) {
        EndElement();
    }
    text_.push_back('\n');
    return std::move(text_);
}

} // namespace qf
