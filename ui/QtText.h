#pragma once

#include <QString>
#include <string_view>

namespace qf::ui {

// The model's UTF-16 texts as Qt strings, without a copy through another encoding.
inline QString ToQString(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

// The text a reader sees of a piece of markup, such as a title that a feed gave with entities or
// tags in it: what a screen reader should say for it.
QString PlainTextOfHtml(std::u16string_view html);

} // namespace qf::ui
