#include "Sandbox/ProxyConnection.h"

#include <openssl/ssl.h>
#include <stdexcept>

namespace marrowbox::sandbox {

asio::ssl::context& Shared::contextFor(const std::string& host) {
    const std::pair key(host, certificateFault.load());
    if (const auto known = contexts_.find(key); known != contexts_.end())
        return known->second;
    asio::ssl::context context(asio::ssl::context::tls_server);
    const Certificate certificate = authority.issue(host, key.second);
    SSL_CTX* native = context.native_handle();
    if (SSL_CTX_use_certificate(native, certificate.certificate.get()) != 1 ||
        SSL_CTX_use_PrivateKey(native, certificate.key.get()) != 1)
        throw std::runtime_error("The TLS library refused a certificate.");
    return contexts_.emplace(key, std::move(context)).first->second;
}

void Shared::failed(std::string what) {
    const std::lock_guard lock(mutex_);
    failures_.push_back(std::move(what));
}

std::vector<std::string> Shared::failures() const {
    const std::lock_guard lock(mutex_);
    return failures_;
}

} // namespace marrowbox::sandbox
