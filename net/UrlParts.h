#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qf {

// Scheme codes of the fetcher; the numbers are its own and are compared as such.
inline constexpr uint32_t kSchemeFtp = 1;
inline constexpr uint32_t kSchemeHttp = 3;
inline constexpr uint32_t kSchemeFile = 4097;
inline constexpr uint32_t kSchemeHttps = 4107;

// A URL as the fetcher sees it. The host keeps a ":port" that follows the name, and the path
// has no leading "/" (it carries the query too).
struct UrlParts {
    uint32_t scheme = kSchemeHttp;
    std::u16string host;
    std::u16string path;
    uint16_t port = 0;
};

// Splits `url` into `parts`; always answers true. The scheme prefix is matched case-sensitively at
// the very start; without a known prefix the scheme is left as it was, so a fresh UrlParts treats
// such a URL as http with the whole text as host and path. The port is read after the last ":"
// anywhere in the URL, path included, so a colon in the path yields port 0 (the scheme's default).
bool CrackUrl(std::u16string_view url, UrlParts& parts);

// The host name without the ":port" that CrackUrl leaves on it (the port field holds the number).
// A colon with no digits after it, or with anything but digits, stays.
std::u16string_view HostWithoutPort(std::u16string_view host);

// The host `url` names, without a ":port" and with letter case folded: what the connections to
// one server have in common, whatever the port.
std::u16string HostKey(std::u16string_view url);

// The scheme's own port: 80, 443, 21, or 0 for file and unknown codes.
uint16_t DefaultPort(uint32_t scheme);

} // namespace qf
