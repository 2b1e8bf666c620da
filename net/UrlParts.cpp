#include "net/UrlParts.h"

#include "platform/Text.h"

#include <array>

namespace qf {

namespace {

struct SchemePrefix {
    std::u16string_view prefix;
    uint32_t scheme;
};

// Tried in this order; the first that matches wins.
constexpr std::array<SchemePrefix, 4> kPrefixes{{
    {u"http://", kSchemeHttp},
    {u"https://", kSchemeHttps},
    {u"ftp://", kSchemeFtp},
    {u"file://", kSchemeFile},
}};

bool IsKnownScheme(uint32_t scheme) {
    return scheme == kSchemeHttp || scheme == kSchemeHttps || scheme == kSchemeFtp ||
           scheme == kSchemeFile;
}

} // namespace

uint16_t DefaultPort(uint32_t scheme) {
    switch (scheme) {
    case kSchemeHttp:
        return 80;
    case kSchemeHttps:
        return 443;
    case kSchemeFtp:
        return 21;
    default:
        return 0;
    }
}

bool CrackUrl(std::u16string_view url, UrlParts& parts) {
    std::u16string_view rest = url;
    for (const auto& [prefix, scheme] : kPrefixes) {
        if (url.starts_with(prefix)) {
            parts.scheme = scheme;
            rest.remove_prefix(prefix.size());
            break;
        }
    }

    if (const auto colon = rest.rfind(u':'); colon != std::u16string_view::npos) {
        // A number too large for a port keeps only its low 16 bits, as the port field always did.
        parts.port = static_cast<uint16_t>(LeadingDecimal(rest.substr(colon + 1)));
    } else if (IsKnownScheme(parts.scheme)) {
        parts.port = DefaultPort(parts.scheme);
    }

    const auto slash = rest.find(u'/');
    parts.host = rest.substr(0, slash);
    parts.path =
        slash == std::u16string_view::npos ? std::u16string_view{} : rest.substr(slash + 1);
    return true;
}

std::u16string_view HostWithoutPort(std::u16string_view host) {
    const auto colon = host.rfind(u':');
    if (colon == std::u16string_view::npos || colon + 1 == host.size()) {
        return host;
    }
    const bool digits =
        host.find_first_not_of(u"0123456789", colon + 1) == std::u16string_view::npos;
    return digits ? host.substr(0, colon) : host;
}

std::u16string HostKey(std::u16string_view url) {
    UrlParts parts;
    CrackUrl(url, parts);
    std::u16string host(HostWithoutPort(parts.host));
    for (char16_t& c : host) {
        c = FoldCase(c);
    }
    return host;
}

} // namespace qf
