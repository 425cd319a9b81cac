#pragma once

#include <memory>
#include <string>

typedef struct evp_pkey_st EVP_PKEY;
typedef struct x509_st X509;

namespace marrowbox::sandbox {

/// A private key and the certificate made for it.
struct Certificate {
    std::shared_ptr<EVP_PKEY> key;
    std::shared_ptr<X509> certificate;

    /// The certificate alone.
    std::string pem() const;
};

/// What is wrong with a certificate that a server shows.
enum class CertificateFault { none, expired, selfSigned, otherHost };

/// A certificate authority that lives in memory alone, fresh with every object. Throws std::runtime_error
/// when the library refuses.
class CertificateAuthority {
  public:
    CertificateAuthority();

    std::string pem() const { return authority_.pem(); }
    /// A certificate for one host, good for some days unless a fault is asked for.
    Certificate issue(const std::string& host, CertificateFault fault = CertificateFault::none) const;

  private:
    Certificate authority_;
};

} // namespace marrowbox::sandbox
