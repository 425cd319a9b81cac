#pragma once

#include "Sandbox/Certificates.h"
#include "Sandbox/Fault.h"
#include "Sandbox/RequestLog.h"
#include "Sandbox/Services.h"

#include <atomic>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace marrowbox::sandbox {

namespace asio = boost::asio;

/// What all connections of one sandbox share. The TLS contexts are used on the serving thread alone.
struct Shared {
    Shared(ClientIdentity client, Clock clock) : services(std::move(client), std::move(clock)) {}

    Services services;
    FaultScript faults;
    RequestLog log;
    CertificateAuthority authority;
    std::string authorityPEM = authority.pem();

    /// What is wrong with the certificates that connections from now on are shown.
    std::atomic<CertificateFault> certificateFault = CertificateFault::none;

    /// The context with the certificate of a host, made at its first use.
    asio::ssl::context& contextFor(const std::string& host);
    void failed(std::string what);
    std::vector<std::string> failures() const;

  private:
    std::map<std::pair<std::string, CertificateFault>, asio::ssl::context> contexts_;
    mutable std::mutex mutex_;
    std::vector<std::string> failures_;
};

/// Serves one client from CONNECT to the end of its connection.
asio::awaitable<void> serveConnection(Shared& shared, asio::ip::tcp::socket socket);

} // namespace marrowbox::sandbox
