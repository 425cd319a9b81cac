#pragma once

#include "Platform/Executors.h"

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace marrowbox {

/// The port on the loopback interface at which one sign-in awaits the browser. Whatever else arrives there is
/// answered and changes nothing. Everything but the construction happens on the given serial executor.
class SignInListener : public std::enable_shared_from_this<SignInListener> {
  public:
    using Outcome = std::variant<std::string, std::exception_ptr>;

    /// Takes a free port of 127.0.0.1. Throws std::system_error.
    SignInListener(asio::any_io_executor executor, std::string expectedState, Wait wait);

    std::uint16_t port() const { return port_; }
    /// Begins to serve; needs a shared owner.
    void start();
    /// The authorisation code, or the failure with which the sign-in ended.
    asio::awaitable<std::string> code();
    /// Ends the sign-in; the first outcome wins. From now on connections are dropped without a reply.
    void finish(Outcome outcome);
    /// Closes the port and every connection; a reply that is being sent ends first.
    void close();

  private:
    struct Connection {
        asio::ip::tcp::socket socket;
        std::string received;
        bool isReplying = false;
    };
    using SharedConnection = std::shared_ptr<Connection>;

    static asio::awaitable<void> accept(std::shared_ptr<SignInListener> self);
    static asio::awaitable<void> serve(std::shared_ptr<SignInListener> self, SharedConnection connection);
    static asio::awaitable<bool> receive(SharedConnection connection);
    static asio::awaitable<void> answer(std::shared_ptr<SignInListener> self, SharedConnection connection);
    void open(asio::ip::tcp::socket socket);
    void makeRoom();

    asio::any_io_executor executor_;
    std::string expectedState_;
    Wait wait_;
    asio::ip::tcp::acceptor acceptor_;
    std::uint16_t port_ = 0;
    asio::steady_timer finished_;
    std::optional<Outcome> outcome_;
    std::vector<std::weak_ptr<Connection>> connections_;
};

} // namespace marrowbox
