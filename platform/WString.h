#pragma once

#include <string>
#include <string_view>

namespace qf {

// Owned UTF-16 text that may be null. A null text (never set, or cleared) is distinct from the
// empty text: files write an attribute for an empty value but leave it out for a null one.
class WString {
public:
    WString() = default;
    WString(std::u16string_view text) : text_(text), null_(false) {}
    WString(const char16_t* text) {
        if (text != nullptr) {
            text_ = text;
            null_ = false;
        }
    }
    WString(std::u16string&& text) : text_(std::move(text)), null_(false) {}

    static WString fromUtf8(std::string_view utf8);

    bool isNull() const { return null_; }
    // True for a null text and for an empty one.
    bool empty() const { return text_.empty(); }
    std::size_t size() const { return text_.size(); }

    const std::u16string& str() const { return text_; }
    std::u16string_view view() const { return text_; }
    const char16_t* c_str() const { return text_.c_str(); }
    std::string toUtf8() const;

    // Setting from a null source leaves the text as it was.
    void set(const WString& source) {
        if (!source.null_) {
            text_ = source.text_;
            null_ = false;
        }
    }
    void set(std::u16string_view source) {
        text_ = source;
        null_ = false;
    }
    void set(const char16_t* source) { set(WString(source)); }
    void clear() {
        text_.clear();
        null_ = true;
    }

    friend bool operator==(const WString& a, const WString& b) {
        return a.null_ == b.null_ && a.text_ == b.text_;
    }
    friend bool operator==(const WString& a, std::u16string_view b) {
        return !a.null_ && a.text_ == b;
    }
    friend bool operator==(const WString& a, const char16_t* b) { return a == WString(b); }

private:
    std::u16string text_;
    bool null_ = true;
};

} // namespace qf
