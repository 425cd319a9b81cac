#include "Support/LoopbackServer.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <charconv>
#include <mutex>
#include <thread>

namespace marrowbox::test {

namespace asio = boost::asio;
using asio::ip::tcp;

namespace {

constexpr std::string_view endOfHead = "\r\n\r\n";

std::size_t contentLength(std::string_view head) {
    constexpr std::string_view name = "\r\nContent-Length: ";
    const auto found = head.find(name);
    std::size_t length = 0;
    if (found != std::string_view::npos)
        std::from_chars(head.data() + found + name.size(), head.data() + head.size(), length);
    return length;
}

} // namespace

struct LoopbackServer::Implementation {
    explicit Implementation(Script answer)
        : script(std::move(answer)), acceptor(context, tcp::endpoint(asio::ip::address_v4::loopback(), 0)) {}

    asio::awaitable<void> accept() {
        for (;;) {
            tcp::socket socket = co_await acceptor.async_accept(asio::use_awaitable);
            int number = 0;
            {
                const std::lock_guard lock(mutex);
                number = ++connections;
            }
            asio::co_spawn(context, serve(std::move(socket), number), asio::detached);
        }
    }

    // A client that goes away ends it with an exception, which is how connections end.
    asio::awaitable<void> serve(tcp::socket socket, int number) {
        std::string received;
        for (;;) {
            const std::size_t headLength = co_await asio::async_read_until(
                socket, asio::dynamic_buffer(received), endOfHead, asio::use_awaitable);
            WebRequest request{
                .connection = number, .head = received.substr(0, headLength - endOfHead.size()), .body = {}};
            const std::size_t whole = headLength + contentLength(request.head);
            if (received.size() < whole)
                co_await asio::async_read(socket, asio::dynamic_buffer(received, whole),
                                          asio::transfer_exactly(whole - received.size()),
                                          asio::use_awaitable);
            request.body = received.substr(headLength, whole - headLength);
            received.erase(0, whole);
            const WebAnswer answer = record(std::move(request));
            co_await asio::async_write(socket, asio::buffer(answer.bytes), asio::use_awaitable);
            if (answer.closes)
                co_return;
        }
    }

    WebAnswer record(WebRequest request) {
        const std::lock_guard lock(mutex);
        requests.push_back(std::move(request));
        return script(requests.back());
    }

    Script script;
    asio::io_context context;
    tcp::acceptor acceptor;
    mutable std::mutex mutex;
    std::vector<WebRequest> requests;
    int connections = 0;
    std::thread thread;
};

WebAnswer webAnswer(const std::string& status, const std::string& headers, const std::string& body) {
    return {"HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + headers +
            "\r\n" + body};
}

LoopbackServer::LoopbackServer(Script script)
    : implementation_(std::make_unique<Implementation>(std::move(script))) {
    asio::co_spawn(implementation_->context, implementation_->accept(), asio::detached);
    implementation_->thread = std::thread([this] { implementation_->context.run(); });
}

LoopbackServer::~LoopbackServer() {
    implementation_->context.stop();
    implementation_->thread.join();
}

std::uint16_t LoopbackServer::port() const {
    return implementation_->acceptor.local_endpoint().port();
}

std::string LoopbackServer::url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port()) + path;
}

std::vector<WebRequest> LoopbackServer::requests() const {
    const std::lock_guard lock(implementation_->mutex);
    return implementation_->requests;
}

int LoopbackServer::connections() const {
    const std::lock_guard lock(implementation_->mutex);
    return implementation_->connections;
}

} // namespace marrowbox::test
