#pragma once

#include "platform/WString.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qf {

inline constexpr std::size_t kCharsetNameLimit = 260;

// Looks a feed's language up in the short table of languages that pick a code page. Both outputs
// are reset first; answers whether the language matched.
bool LanguageToCodePage(const WString& language, int32_t& codePage, std::u16string& charsetName,
                        std::size_t nameLimit = kCharsetNameLimit);

// "windows-N" gives N (its leading number), "iso-8859-P" the Windows code page of that part;
// everything else, a null name included, gives 0.
int32_t CharsetToCodePage(const WString& charsetName);

// Converts bytes (up to the first NUL) in a Windows code page to UTF-16. Code page 0, and a number
// the system has no character set for, mean the configured default character set: UTF-8 unless
// the environment variable QUILLFEED_CODEPAGE names another (read at each conversion). Invalid
// input becomes U+FFFD. At most outLimit - 1 units are written (the limit counts the terminator
// of the buffers this mirrors); a surrogate pair is never split.
std::u16string BytesToWide(std::string_view bytes, int32_t codePage,
                           std::size_t outLimit = std::u16string::npos);

// The mirror image, up to the first NUL of the text: characters the code page cannot hold, and
// unpaired surrogates, become '?' (in UTF-8, which holds every character, an unpaired surrogate
// becomes U+FFFD). At most outLimit - 1 bytes are written, never half a character.
std::string WideToBytes(std::u16string_view text, int32_t codePage,
                        std::size_t outLimit = std::string::npos);

} // namespace qf
