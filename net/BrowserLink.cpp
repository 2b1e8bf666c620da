#include "net/BrowserLink.h"

namespace qf {

namespace {

constexpr std::u16string_view kLocalLinkPrefix = u"qf_";

} // namespace

std::optional<std::u16string> LinkForBrowser(const WString& link) {
    if (link.isNull()) {
        return std::nullopt;
    }
    std::u16string_view target = link.view();
    if (target.starts_with(kLocalLinkPrefix)) {
        target.remove_prefix(kLocalLinkPrefix.size());
    }
    return std::u16string(target);
}

} // namespace qf
