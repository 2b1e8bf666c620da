#pragma once

#include "platform/WString.h"

#include <optional>
#include <string>

namespace qf {

// The address to hand to the desktop for a story's link, or nothing when there is nothing the
// desktop may open. A link that begins with "qf_" names one of the program's own local pages;
// the desktop gets it without that prefix. Only web and mail addresses (http, https, mailto)
// leave the program: a hostile feed must not make the desktop open local files or start the
// handler of some other scheme.
std::optional<std::u16string> LinkForBrowser(const WString& link);

} // namespace qf
