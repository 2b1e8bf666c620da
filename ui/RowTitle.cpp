#include "ui/RowTitle.h"

#include "platform/Text.h"

#include <cstddef>
#include <vector>

namespace qf::ui {

namespace {

constexpr int32_t kLastRemovedValue = 32;

// The text as the little-endian bytes of a terminated UTF-16 buffer, so that a move by a count of
// bytes can split a character as it did there.
class ByteBuffer {
public:
    explicit ByteBuffer(std::u16string_view text) : bytes_((text.size() + 1) * 2, 0) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            Set(i, text[i]);
        }
    }

    char16_t At(std::size_t index) const {
        return static_cast<char16_t>(bytes_[index * 2] | (bytes_[index * 2 + 1] << 8));
    }
    void Set(std::size_t index, char16_t c) {
        bytes_[index * 2] = static_cast<unsigned char>(c & 0xFF);
        bytes_[index * 2 + 1] = static_cast<unsigned char>(c >> 8);
    }
    // Moves `count` bytes from character `from` to character `to` (to < from), as memmove would.
    void MoveBytes(std::size_t to, std::size_t from, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            bytes_[to * 2 + i] = bytes_[from * 2 + i];
        }
    }
    // The text up to its first terminator.
    std::u16string Text() const {
        std::u16string text;
        for (std::size_t i = 0; i * 2 < bytes_.size() && At(i) != 0; ++i) {
            text.push_back(At(i));
        }
        return text;
    }

private:
    std::vector<unsigned char> bytes_;
};

} // namespace

std::u16string RowTitle(std::u16string_view title) {
    std::u16string text(title);
    std::size_t searchFrom = 0;
    while (true) {
        const std::size_t amp = text.find(u"&#", searchFrom);
        if (amp == std::u16string::npos) {
            return text;
        }
        searchFrom = amp + 2;
        const std::size_t semicolon = text.find(u';', amp + 2);
        if (semicolon == std::u16string::npos) {
            continue;
        }
        const int32_t value =
            LeadingDecimal(std::u16string_view(text).substr(amp + 2, semicolon - amp - 2));
        if (value <= 0) {
            continue;
        }
        const std::size_t length = text.size();
        ByteBuffer buffer(text);
        if (value <= kLastRemovedValue) {
            buffer.MoveBytes(amp, semicolon + 1, length - semicolon + 1);
        } else {
            buffer.Set(amp, static_cast<char16_t>(value));
            buffer.MoveBytes(amp + 1, semicolon + 1, length - semicolon);
        }
        text = buffer.Text();
    }
}

} // namespace qf::ui
