#include "net/BrowserLink.h"

#include "platform/Text.h"

#include <algorithm>
#include <array>

namespace qf {

namespace {

constexpr std::u16string_view kLocalLinkPrefix = u"qf_";
constexpr std::array<std::u16string_view, 3> kOpenableSchemes = {u"http:", u"https:", u"mailto:"};

bool HasOpenableScheme(std::u16string_view address) {
    return std::ranges::any_of(kOpenableSchemes, [address](std::u16string_view scheme) {
        return address.size() >= scheme.size() &&
               EqualsIgnoreCase(address.substr(0, scheme.size()), scheme);
    });
}

} // namespace

std::optional<std::u16string> LinkForBrowser(const WString& link) {
    if (link.isNull()) {
        return std::nullopt;
    }
    std::u16string_view target = link.view();
    if (target.starts_with(kLocalLinkPrefix)) {
        target.remove_prefix(kLocalLinkPrefix.size());
    }
    if (!HasOpenableScheme(target)) {
        return std::nullopt;
    }
    return std::u16string(target);
}

} // namespace qf
