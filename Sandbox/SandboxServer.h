#pragma once

#include "Platform/Clock.h"
#include "Sandbox/Certificates.h"
#include "Sandbox/Drive.h"
#include "Sandbox/Fault.h"
#include "Sandbox/Identity.h"
#include "Sandbox/RequestLog.h"
#include "Sandbox/RequestMatch.h"
#include "Sandbox/Services.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace marrowbox::sandbox {

struct SandboxOptions {
    /// 0 takes a free port.
    std::uint16_t port = 0;
    Person person;
    ClientIdentity client;
    /// Judges whether a token is still good.
    Clock clock = systemClock();
};

/// The Google services that the program and its tools talk to, simulated behind an HTTPS proxy on 127.0.0.1.
/// A client reaches them by their real names over real TLS, with HTTPS_PROXY set to proxyURL() and
/// SSL_CERT_FILE to the file of writeAuthority(); any other host is refused at the proxy.
///
///     SandboxServer sandbox;
///     const std::string folder = sandbox.drive().addFolder("root", "Papers");
///     sandbox.drive().addFile(folder, "a.txt", "text");
///     sandbox.inject(Fault::on(listing(folder)).nth(2).answer(503).times(2));
///     const SandboxToken token = sandbox.identity().issueToken();
///     … run the program …
///     EXPECT_EQ(sandbox.requests().count(listing(folder)), 3);
///
/// It serves on a thread of its own from construction to destruction, which closes every connection and waits
/// for the thread. All operations may be called from any thread while it serves. Any number may live at once.
class SandboxServer {
  public:
    explicit SandboxServer(SandboxOptions options = {});
    SandboxServer(const SandboxServer&) = delete;
    SandboxServer& operator=(const SandboxServer&) = delete;
    ~SandboxServer();

    std::uint16_t port() const;
    /// "http://127.0.0.1:PORT"
    std::string proxyURL() const;
    /// The certificate that clients must trust.
    const std::string& authorityPEM() const;
    void writeAuthority(const std::filesystem::path& file) const;
    /// HTTPS_PROXY and SSL_CERT_FILE for a child process that is to live in the sandbox.
    std::map<std::string, std::string> environment(const std::filesystem::path& authorityFile) const;

    /// The Drive of the first account.
    Drive& drive();
    /// The Drive of an account by its sub.
    Drive& drive(std::string_view sub);
    /// Another account with an empty Drive.
    Drive& addAccount(Person person);
    Identity& identity();
    RequestLog& requests();
    std::vector<SentMail> mail() const;

    void inject(Fault fault);
    void clearFaults();
    /// From now on each new connection is shown a certificate with this fault, whatever its host. Also from a
    /// fault's hook.
    void showCertificates(CertificateFault fault);
    /// What went wrong inside the sandbox itself, such as a hook that threw; empty in a sound test.
    std::vector<std::string> failures() const;

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace marrowbox::sandbox
