#include "Sandbox/SandboxServer.h"

#include "Platform/Descriptor.h"
#include "Sandbox/ProxyConnection.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <fstream>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>

namespace marrowbox::sandbox {

namespace {

[[noreturn]] void throwErrno(const char* call) {
    throw std::system_error(errno, std::generic_category(), call);
}

/// A listening socket on the loopback interface. Made by hand, because a child process of the test must not
/// inherit it, and Asio does not ask for that.
Descriptor listeningSocket(std::uint16_t port) {
    Descriptor listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!listener)
        throwErrno("socket");
    const int on = 1;
    ::setsockopt(listener.number(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(listener.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throwErrno("bind");
    if (::listen(listener.number(), SOMAXCONN) != 0)
        throwErrno("listen");
    return listener;
}

/// The next connection that waits; empty when it went away again.
Descriptor acceptedSocket(int listener) {
    Descriptor accepted(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!accepted && errno != EAGAIN && errno != ECONNABORTED && errno != EINTR)
        throwErrno("accept4");
    const int on = 1;
    if (accepted)
        ::setsockopt(accepted.number(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return accepted;
}

} // namespace

struct SandboxServer::Implementation {
    explicit Implementation(SandboxOptions options)
        : shared(std::move(options.client), std::move(options.clock)),
          acceptor(context, asio::ip::tcp::v4(), listeningSocket(options.port).release()) {
        shared.services.addAccount(std::move(options.person));
        asio::co_spawn(context, acceptAll(), reported());
        thread = std::thread([this] { context.run(); });
    }

    ~Implementation() {
        context.stop();
        thread.join();
    }

    /// Keeps what ended a coroutine for the test to see.
    std::function<void(std::exception_ptr)> reported() {
        return [this](std::exception_ptr thrown) {
            try {
                if (thrown)
                    std::rethrow_exception(thrown);
            } catch (const std::exception& failure) {
                shared.failed(failure.what());
            }
        };
    }

    asio::awaitable<void> acceptAll() {
        for (;;) {
            co_await acceptor.async_wait(asio::ip::tcp::acceptor::wait_read, asio::use_awaitable);
            Descriptor accepted = acceptedSocket(acceptor.native_handle());
            if (!accepted)
                continue;
            asio::ip::tcp::socket socket(context, asio::ip::tcp::v4(), accepted.release());
            asio::co_spawn(context, serveConnection(shared, std::move(socket)), reported());
        }
    }

    Shared shared;
    asio::io_context context{1}; // ends before what its connections use
    asio::ip::tcp::acceptor acceptor;
    std::thread thread;
};

SandboxServer::SandboxServer(SandboxOptions options)
    : implementation_(std::make_unique<Implementation>(std::move(options))) {
}

SandboxServer::~SandboxServer() = default;

std::uint16_t SandboxServer::port() const {
    return implementation_->acceptor.local_endpoint().port();
}

std::string SandboxServer::proxyURL() const {
    return "http://127.0.0.1:" + std::to_string(port());
}

const std::string& SandboxServer::authorityPEM() const {
    return implementation_->shared.authorityPEM;
}

void SandboxServer::writeAuthority(const std::filesystem::path& file) const {
    std::ofstream out(file);
    out << authorityPEM();
    if (!out.flush())
        throw std::system_error(errno, std::generic_category(), file.string());
}

std::map<std::string, std::string>
SandboxServer::environment(const std::filesystem::path& authorityFile) const {
    return {{"HTTPS_PROXY", proxyURL()}, {"SSL_CERT_FILE", authorityFile.string()}};
}

Drive& SandboxServer::drive() {
    return implementation_->shared.services.drive();
}

Drive& SandboxServer::drive(std::string_view sub) {
    return implementation_->shared.services.drive(sub);
}

Drive& SandboxServer::addAccount(Person person) {
    return implementation_->shared.services.addAccount(std::move(person));
}

Identity& SandboxServer::identity() {
    return implementation_->shared.services.identity();
}

RequestLog& SandboxServer::requests() {
    return implementation_->shared.log;
}

std::vector<SentMail> SandboxServer::mail() const {
    return implementation_->shared.services.mail();
}

void SandboxServer::inject(Fault fault) {
    implementation_->shared.faults.inject(std::move(fault));
}

void SandboxServer::clearFaults() {
    implementation_->shared.faults.clear();
}

void SandboxServer::showCertificates(CertificateFault fault) {
    implementation_->shared.certificateFault = fault;
}

std::vector<std::string> SandboxServer::failures() const {
    return implementation_->shared.failures();
}

} // namespace marrowbox::sandbox
