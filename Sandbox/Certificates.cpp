#include "Sandbox/Certificates.h"

#include "Platform/RandomBytes.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <stdexcept>

namespace marrowbox::sandbox {

namespace {

constexpr long day = 24 * 60 * 60;

void require(bool success) {
    if (!success)
        throw std::runtime_error("The certificate library refused to work.");
}

void addExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
        X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()), X509_EXTENSION_free);
    require(extension != nullptr && X509_add_ext(certificate, extension.get(), -1) == 1);
}

void setSerialNumber(X509* certificate) {
    const auto bytes = randomBytes(16);
    require(bytes.has_value());
    const std::unique_ptr<BIGNUM, decltype(&BN_free)> number(
        BN_bin2bn(reinterpret_cast<const unsigned char*>(bytes->data()), 15, nullptr), BN_free);
    require(BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate)) != nullptr);
}

void setName(X509_NAME* name, const std::string& commonName) {
    require(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                                       reinterpret_cast<const unsigned char*>(commonName.c_str()), -1, -1,
                                       0) == 1);
}

/// A key and a certificate with names and dates, still to be signed.
Certificate unsignedCertificate(const std::string& commonName) {
    Certificate made;
    made.key = {EVP_EC_gen("P-256"), EVP_PKEY_free};
    made.certificate = {X509_new(), X509_free};
    require(made.key != nullptr && made.certificate != nullptr);
    X509* certificate = made.certificate.get();
    require(X509_set_version(certificate, X509_VERSION_3) == 1);
    setSerialNumber(certificate);
    require(X509_gmtime_adj(X509_getm_notBefore(certificate), -day) != nullptr);
    require(X509_gmtime_adj(X509_getm_notAfter(certificate), 30 * day) != nullptr);
    setName(X509_get_subject_name(certificate), commonName);
    require(X509_set_pubkey(certificate, made.key.get()) == 1);
    return made;
}

} // namespace

std::string Certificate::pem() const {
    const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), BIO_free);
    require(memory != nullptr && PEM_write_bio_X509(memory.get(), certificate.get()) == 1);
    char* data = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &data);
    return {data, static_cast<std::size_t>(size)};
}

CertificateAuthority::CertificateAuthority() : authority_(unsignedCertificate("Sandbox Authority")) {
    X509* certificate = authority_.certificate.get();
    require(X509_set_issuer_name(certificate, X509_get_subject_name(certificate)) == 1);
    addExtension(certificate, certificate, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(certificate, certificate, NID_key_usage, "critical,keyCertSign,cRLSign");
    addExtension(certificate, certificate, NID_subject_key_identifier, "hash");
    require(X509_sign(certificate, authority_.key.get(), EVP_sha256()) > 0);
}

Certificate CertificateAuthority::issue(const std::string& host, CertificateFault fault) const {
    const std::string named = fault == CertificateFault::otherHost ? "elsewhere.example" : host;
    Certificate issued = unsignedCertificate(named);
    const Certificate& signer = fault == CertificateFault::selfSigned ? issued : authority_;
    X509* certificate = issued.certificate.get();
    X509* issuer = signer.certificate.get();
    if (fault == CertificateFault::expired)
        require(X509_gmtime_adj(X509_getm_notAfter(certificate), -60) != nullptr);
    require(X509_set_issuer_name(certificate, X509_get_subject_name(issuer)) == 1);
    addExtension(certificate, issuer, NID_basic_constraints, "critical,CA:FALSE");
    addExtension(certificate, issuer, NID_key_usage, "critical,digitalSignature");
    addExtension(certificate, issuer, NID_ext_key_usage, "serverAuth");
    addExtension(certificate, issuer, NID_subject_alt_name, "DNS:" + named);
    if (fault != CertificateFault::selfSigned)
        addExtension(certificate, issuer, NID_authority_key_identifier, "keyid");
    require(X509_sign(certificate, signer.key.get(), EVP_sha256()) > 0);
    return issued;
}

} // namespace marrowbox::sandbox
