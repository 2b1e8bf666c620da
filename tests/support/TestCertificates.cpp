#include "support/TestCertificates.h"

#include <memory>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <stdexcept>
#include <string>

namespace qf::test {

namespace {

template <auto release> struct Free {
    void operator()(auto* object) const { release(object); }
};
using Key = std::unique_ptr<EVP_PKEY, Free<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Free<X509_free>>;

constexpr long kDay = 24 * 60 * 60;

void Check(bool ok, const char* what) {
    if (!ok) {
        throw std::runtime_error(std::string("test certificates: ") + what);
    }
}

Key MakeKey() {
    Key key(EVP_EC_gen("P-256"));
    Check(key != nullptr, "key generation");
    return key;
}

struct Issuer {
    X509* certificate; // null: self-signed
    EVP_PKEY* key;
};

struct Shape {
    const char* commonName;
    const char* subjectAltName; // null for an authority
    long validFromDays;
    long validUntilDays;
};

void AddExtension(X509* certificate, X509* issuer, int nid, const char* value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
    Check(extension != nullptr && X509_add_ext(certificate, extension, -1) == 1, "extension");
    X509_EXTENSION_free(extension);
}

Certificate MakeCertificate(const Shape& shape, EVP_PKEY* key, const Issuer& issuer) {
    static long serial = 1;
    Certificate certificate(X509_new());
    X509* x = certificate.get();
    X509_set_version(x, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(x), ++serial);
    X509_gmtime_adj(X509_getm_notBefore(x), shape.validFromDays * kDay);
    X509_gmtime_adj(X509_getm_notAfter(x), shape.validUntilDays * kDay);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(x), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(shape.commonName), -1, -1, 0);
    X509* signer = issuer.certificate != nullptr ? issuer.certificate : x;
    X509_set_issuer_name(x, X509_get_subject_name(signer));
    X509_set_pubkey(x, key);
    if (shape.subjectAltName == nullptr) {
        AddExtension(x, signer, NID_basic_constraints, "critical,CA:TRUE");
        AddExtension(x, signer, NID_key_usage, "critical,keyCertSign,cRLSign");
    } else {
        AddExtension(x, signer, NID_subject_alt_name, shape.subjectAltName);
    }
    Check(X509_sign(x, issuer.key, EVP_sha256()) > 0, "signing");
    return certificate;
}

void WritePem(const std::filesystem::path& path, X509* certificate, EVP_PKEY* key) {
    std::unique_ptr<BIO, Free<BIO_free>> bio(BIO_new_file(path.c_str(), "w"));
    Check(bio != nullptr, "file");
    const bool written =
        certificate != nullptr
            ? PEM_write_bio_X509(bio.get(), certificate) == 1
            : PEM_write_bio_PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1;
    Check(written, "writing");
}

} // namespace

TestCertificates WriteTestCertificates(const std::filesystem::path& folder) {
    const Key authorityKey = MakeKey();
    const Certificate authority =
        MakeCertificate({"Quillfeed Test CA", nullptr, -1, 3650}, authorityKey.get(),
                        {nullptr, authorityKey.get()});
    const Key strangerKey = MakeKey();
    const Certificate stranger = MakeCertificate({"Unknown CA", nullptr, -1, 3650},
                                                 strangerKey.get(), {nullptr, strangerKey.get()});

    TestCertificates result;
    result.authority = folder / "authority.pem";
    WritePem(result.authority, authority.get(), nullptr);

    const Key serverKey = MakeKey();
    const auto write = [&](const char* name, const Shape& shape, const Issuer& issuer) {
        const Certificate certificate = MakeCertificate(shape, serverKey.get(), issuer);
        TlsListener listener{name, folder / (std::string(name) + ".pem"),
                             folder / (std::string(name) + ".key")};
        WritePem(listener.certificate, certificate.get(), nullptr);
        WritePem(listener.key, nullptr, serverKey.get());
        result.listeners.push_back(listener);
    };
    const Issuer trusted{authority.get(), authorityKey.get()};
    write("valid", {"127.0.0.1", "IP:127.0.0.1", -1, 365}, trusted);
    write("expired", {"127.0.0.1", "IP:127.0.0.1", -30, -1}, trusted);
    write("not-yet-valid", {"127.0.0.1", "IP:127.0.0.1", 1, 365}, trusted);
    write("wrong-host", {"wrong-host.test", "DNS:wrong-host.test", -1, 365}, trusted);
    write("untrusted", {"127.0.0.1", "IP:127.0.0.1", -1, 365}, {stranger.get(), strangerKey.get()});
    return result;
}

} // namespace qf::test
