#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qf {

// Buffer capacities, in UTF-16 units, that still shape what the user sees.
inline constexpr std::size_t kPathCapacity = 260;
inline constexpr std::size_t kUrlCapacity = 520;
inline constexpr std::size_t kFormattedCapacity = 1040;
inline constexpr std::size_t kXmlNameCapacity = 256;
inline constexpr std::size_t kXmlValueCapacity = 10240;

// Copies the whole source when it is shorter than the capacity, otherwise exactly `capacity`
// units (the fixed buffers this mirrors had room for one unit more than they admitted).
std::u16string BoundedCopy(std::u16string_view source, std::size_t capacity);

// Appends as much of the source as keeps the text below `capacity` units (one is kept for the
// terminator of the fixed buffers this mirrors).
void BoundedAppend(std::u16string& text, std::u16string_view source, std::size_t capacity);

// Reads a decimal number the way every number in a file is read: leading white space, an
// optional sign, then the leading digits; anything else ends the number, and no digits give 0.
// Values beyond the 32-bit range are clamped to it.
int32_t LeadingDecimal(std::u16string_view text);
int32_t LeadingDecimal(std::string_view text);

// Case-insensitive equality of names; folds non-ASCII letters as well (Latin, Greek, Cyrillic,
// Armenian and full-width forms), because category names are often not English.
bool EqualsIgnoreCase(std::u16string_view a, std::u16string_view b);
// The same for bytes (protocol words, charset names, dates): only ASCII letters fold, as a byte
// beyond ASCII is no letter on its own.
bool EqualsIgnoreCase(std::string_view a, std::string_view b);
char16_t FoldCase(char16_t c);

// The one codec between UTF-8 and UTF-16. Decoding turns every byte that does not start a
// well-formed sequence (malformed, truncated, overlong, a surrogate, beyond U+10FFFF) into
// U+FFFD and carries on with the next byte. Encoding turns unpaired surrogates into U+FFFD.
std::u16string Utf8ToUtf16(std::string_view utf8);
std::string Utf16ToUtf8(std::u16string_view utf16);
void AppendUtf16(std::u16string& out, std::string_view utf8);

// What an encoded text must be fit for besides being UTF-8.
enum class Utf8Use {
    kText,
    // Characters XML 1.0 cannot hold at all (control characters other than tab and line
    // breaks, U+FFFE, U+FFFF) become U+FFFD too, so that a saved value never makes its file
    // unreadable.
    kXml,
};
void AppendUtf8(std::string& out, std::u16string_view utf16, Utf8Use use = Utf8Use::kText);

// ASCII-only literals made UTF-16, for building texts from format strings.
std::u16string AsciiToUtf16(std::string_view ascii);

} // namespace qf
