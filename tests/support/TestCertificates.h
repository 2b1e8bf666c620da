#pragma once

#include "support/TestServer.h"

#include <filesystem>

namespace qf::test {

// A certificate authority made for the tests and server certificates for 127.0.0.1, written as
// PEM files into a folder.
struct TestCertificates {
    // The authority to trust (hand it to QUILLFEED_CA_FILE).
    std::filesystem::path authority;
    // HTTPS listeners named "valid", "expired", "not-yet-valid", "wrong-host" (issued for another
    // name) and "untrusted" (issued by an authority nobody trusts).
    std::vector<TlsListener> listeners;
};

TestCertificates WriteTestCertificates(const std::filesystem::path& folder);

} // namespace qf::test
