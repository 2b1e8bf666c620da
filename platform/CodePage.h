#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qf {

// Names the character set that code page 0 stands for: a Windows code-page number ("1251") or a
// name the system's converter knows ("KOI8-R"). UTF-8 when unset, empty or unusable. It is read
// on every conversion that needs the default, so a change takes effect at once.
inline constexpr const char* kDefaultCodePageVariable = "QUILLFEED_CODEPAGE";

// Windows code page of UTF-8, which the converter does not know by its number.
inline constexpr int32_t kUtf8CodePage = 65001;

// Whether code page 0 stands for UTF-8: the variable is unset, empty, names UTF-8 (by name or
// as 65001), or names nothing the converter can use, which also falls back to UTF-8.
bool DefaultCharsetIsUtf8();

// Bytes in a Windows code page to UTF-16, at most maxUnits units (a surrogate pair is never
// split). Code page 0, and numbers the system has no character set for, use the default
// character set. Invalid bytes become U+FFFD; the conversion always goes on past them.
std::u16string DecodeCodePage(std::string_view bytes, int32_t codePage,
                              std::size_t maxUnits = std::u16string::npos);

// UTF-16 to bytes in a Windows code page, at most maxBytes bytes (never half a character).
// Characters the code page cannot hold and unpaired surrogates become '?'; in UTF-8, which holds
// every character, an unpaired surrogate becomes U+FFFD.
std::string EncodeCodePage(std::u16string_view text, int32_t codePage,
                           std::size_t maxBytes = std::string::npos);

} // namespace qf
