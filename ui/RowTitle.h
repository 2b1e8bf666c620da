#pragma once

#include <string>
#include <string_view>

namespace qf::ui {

// The text a list row shows for a channel or story title: numeric character references ("&#"
// decimal digits ";") are resolved in place the way the lists always did it. A value of 0 (hex
// and non-numeric references included) stays; 1 to 32 removes the reference; 33 or more puts
// that character (one UTF-16 unit) in place of the "&". The rest of the text is then moved left
// by a count of bytes equal to the count of characters behind the ";" (plus one when the
// reference was removed), so only about half of it moves and the characters behind it stay where
// they were: "caf&#233; au lait" reads "café au l au lait". Users know the lists this way.
std::u16string RowTitle(std::u16string_view title);

} // namespace qf::ui
