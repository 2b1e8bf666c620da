#pragma once

#include "platform/WString.h"

#include <optional>
#include <string>

namespace qf {

// The address to hand to the web browser for a story's link, or nothing for a story without a
// link. A link that begins with "qf_" names one of the program's own local pages; the browser
// gets it without that prefix.
std::optional<std::u16string> LinkForBrowser(const WString& link);

} // namespace qf
