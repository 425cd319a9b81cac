#include "GoogleOAuth/SignInListener.h"

#include "GoogleOAuth/SignInCallback.h"
#include "Models/BackupError.h"

#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <fcntl.h>
#include <system_error>

namespace marrowbox {

using asio::ip::tcp;
using boost::system::error_code;

namespace {

constexpr std::size_t largestRequest = 16384;
/// Far more than a browser opens. Anybody on this machine can connect and say nothing, and each connection
/// takes a descriptor from the whole program.
constexpr std::size_t mostConnections = 64;
constexpr std::string_view blankLine = "\r\n\r\n";

// A tool that is started meanwhile must not hold the port.
void closeOnExec(auto& socket) {
    ::fcntl(socket.native_handle(), F_SETFD, FD_CLOEXEC);
}

tcp::acceptor openPort(const asio::any_io_executor& executor) try {
    return {executor, tcp::endpoint(asio::ip::address_v4::loopback(), 0)};
} catch (const boost::system::system_error& failure) {
    // The system's words alone; the network library's tell a place in its sources too.
    throw std::system_error(failure.code());
}

// What a peer does wrong ends its own connection and concerns nobody else.
void connectionEnded(const std::exception_ptr&) {
}

std::exception_ptr denial() {
    return std::make_exception_ptr(BackupError("Google access was not granted."));
}

} // namespace

SignInListener::SignInListener(asio::any_io_executor executor, std::string expectedState, Wait wait)
    : executor_(executor), expectedState_(std::move(expectedState)), wait_(std::move(wait)),
      acceptor_(openPort(executor)), port_(acceptor_.local_endpoint().port()),
      finished_(executor, asio::steady_timer::time_point::max()) {
    closeOnExec(acceptor_);
    if (port_ == 0)
        throw BackupError("Could not open the Google sign-in callback.");
}

void SignInListener::start() {
    const std::weak_ptr<SignInListener> weak = weak_from_this();
    asio::co_spawn(executor_, accept(shared_from_this()), [weak](std::exception_ptr failure) {
        if (const auto self = weak.lock(); self && failure)
            self->finish(std::move(failure));
    });
}

asio::awaitable<std::string> SignInListener::code() {
    while (!outcome_) {
        error_code woken;
        co_await finished_.async_wait(asio::redirect_error(asio::use_awaitable, woken));
    }
    if (const auto* failure = std::get_if<std::exception_ptr>(&*outcome_))
        std::rethrow_exception(*failure);
    co_return std::get<std::string>(*outcome_);
}

void SignInListener::finish(Outcome outcome) {
    if (outcome_)
        return;
    outcome_ = std::move(outcome);
    finished_.cancel();
}

void SignInListener::close() {
    error_code ignored;
    acceptor_.close(ignored);
    for (const auto& weak : connections_)
        if (const auto connection = weak.lock(); connection && !connection->isReplying)
            connection->socket.close(ignored);
    connections_.clear();
}

asio::awaitable<void> SignInListener::accept(std::shared_ptr<SignInListener> self) {
    while (self->acceptor_.is_open()) {
        error_code failure;
        tcp::socket socket =
            co_await self->acceptor_.async_accept(asio::redirect_error(asio::use_awaitable, failure));
        if (!self->acceptor_.is_open())
            co_return;
        if (!failure)
            self->open(std::move(socket));
        else if (failure != asio::error::connection_aborted)
            // No descriptor is left, for one; the browser's connection stays in the queue until there is.
            co_await self->wait_(std::chrono::seconds(1), {});
    }
}

void SignInListener::open(tcp::socket socket) {
    closeOnExec(socket);
    auto connection = std::make_shared<Connection>(Connection{std::move(socket), {}});
    makeRoom();
    connections_.push_back(connection);
    asio::co_spawn(executor_, serve(shared_from_this(), std::move(connection)), connectionEnded);
}

/// Drops the connection that has kept silent the longest when there are too many.
void SignInListener::makeRoom() {
    std::erase_if(connections_, [](const auto& weak) { return weak.expired(); });
    if (connections_.size() < mostConnections)
        return;
    error_code ignored;
    if (const auto oldest = connections_.front().lock())
        oldest->socket.close(ignored);
    connections_.erase(connections_.begin());
}

asio::awaitable<void> SignInListener::serve(std::shared_ptr<SignInListener> self,
                                            SharedConnection connection) {
    for (;;) {
        const bool isComplete = co_await receive(connection);
        if (self->outcome_ || connection->received.size() > largestRequest)
            co_return;
        if (isComplete || connection->received.find(blankLine) != std::string::npos)
            break;
    }
    co_await answer(std::move(self), std::move(connection));
}

/// Appends what the peer sends next. True once it sends no more.
asio::awaitable<bool> SignInListener::receive(SharedConnection connection) {
    std::array<char, largestRequest> piece;
    error_code failure;
    const std::size_t count = co_await connection->socket.async_read_some(
        asio::buffer(piece), asio::redirect_error(asio::use_awaitable, failure));
    if (failure && failure != asio::error::eof)
        throw boost::system::system_error(failure);
    connection->received.append(piece.data(), count);
    co_return failure == asio::error::eof;
}

asio::awaitable<void> SignInListener::answer(std::shared_ptr<SignInListener> self,
                                             SharedConnection connection) {
    SignInCallback::Verdict verdict = SignInCallback::judge(connection->received, self->expectedState_);
    const std::string message = SignInCallback::message(verdict);
    connection->isReplying = true;
    if (auto* granted = std::get_if<SignInCallback::Granted>(&verdict.meaning))
        self->finish(std::move(granted->code));
    else if (std::holds_alternative<SignInCallback::Denied>(verdict.meaning))
        self->finish(denial());
    co_await asio::async_write(connection->socket, asio::buffer(message), asio::use_awaitable);
    connection->socket.shutdown(tcp::socket::shutdown_send);
}

} // namespace marrowbox
