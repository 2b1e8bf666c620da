#include "platform/WString.h"

#include "platform/Text.h"

namespace qf {

WString WString::fromUtf8(std::string_view utf8) {
    return WString(Utf8ToUtf16(utf8));
}

std::string WString::toUtf8() const {
    return Utf16ToUtf8(text_);
}

} // namespace qf
