#include "Sandbox/ProxyConnection.h"

#include "Sandbox/AnswerBody.h"

#include <algorithm>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <charconv>

namespace marrowbox::sandbox {

namespace {

namespace http = boost::beast::http;
using asio::use_awaitable;
using Parser = http::request_parser<http::string_body>;
using Stream = asio::ssl::stream<asio::ip::tcp::socket>;

constexpr std::uint64_t largestRequest = 64U * 1024 * 1024;
constexpr std::int64_t partSize = 128 * 1024;

enum class Next { keepAlive, close };

RecordedRequest recorded(const Parser::value_type& request, const std::string& host, std::size_t connection) {
    RecordedRequest record;
    record.method = std::string(request.method_string());
    record.host = host;
    record.target = std::string(request.target());
    record.connection = static_cast<std::int64_t>(connection);
    const std::size_t question = std::min(record.target.find('?'), record.target.size());
    record.path = percentDecoded(record.target.substr(0, question), false);
    if (question < record.target.size())
        record.query = queryItems(std::string_view(record.target).substr(question + 1));
    for (const auto& field : request)
        record.headers.emplace_back(field.name_string(), field.value());
    record.body = request.body();
    return record;
}

Answer scriptedError(const FaultEffects& effects) {
    const std::string_view reason = effects.reason.empty() ? usualReason(*effects.status) : effects.reason;
    return googleError(*effects.status, reason, "Scripted by the test.");
}

/// One client's connection: a tunnel to one host, and the requests in it, one after another.
class ProxyConnection {
  public:
    ProxyConnection(Shared& shared, asio::ip::tcp::socket socket)
        : shared_(shared), socket_(std::move(socket)), number_(shared.log.connectionOpened()) {}
    ProxyConnection(const ProxyConnection&) = delete;
    ProxyConnection& operator=(const ProxyConnection&) = delete;
    ~ProxyConnection() { shared_.log.connectionClosed(); }

    asio::awaitable<void> serve() {
        const bool isOpen = co_await openTunnel();
        if (!isOpen)
            co_return;
        stream_.emplace(std::move(socket_), shared_.contextFor(host_));
        co_await stream_->async_handshake(asio::ssl::stream_base::server, use_awaitable);
        Next next = Next::keepAlive;
        while (next == Next::keepAlive)
            next = co_await serveRequest();
        stream_->lowest_layer().shutdown(asio::ip::tcp::socket::shutdown_both);
    }

  private:
    asio::awaitable<bool> openTunnel() {
        boost::beast::flat_buffer buffer;
        http::request_parser<http::empty_body> parser;
        co_await http::async_read_header(socket_, buffer, parser, use_awaitable);
        const std::string target(parser.get().target());
        const std::string host = target.substr(0, target.rfind(':'));
        const bool isServed =
            parser.get().method() == http::verb::connect && Services::serves(host) && target == host + ":443";
        if (!isServed)
            shared_.log.hostRefused(target);
        const std::string reply = isServed ? "HTTP/1.1 200 Connection established\r\n\r\n"
                                           : "HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n";
        co_await asio::async_write(socket_, asio::buffer(reply), use_awaitable);
        host_ = host;
        co_return isServed;
    }

    asio::awaitable<Next> serveRequest() {
        Parser parser;
        parser.body_limit(largestRequest);
        co_await http::async_read_header(*stream_, buffer_, parser, use_awaitable);
        if (parser.get()[http::field::expect] == "100-continue") {
            const std::string goOn = "HTTP/1.1 100 Continue\r\n\r\n";
            co_await asio::async_write(*stream_, asio::buffer(goOn), use_awaitable);
        }
        co_await http::async_read(*stream_, buffer_, parser, use_awaitable);
        const RecordedRequest request = recorded(parser.get(), host_, number_);
        const std::size_t token = shared_.log.begin(request);
        const FaultEffects effects = shared_.faults.effectsFor(request);
        if (effects.latency.count() > 0) {
            asio::steady_timer timer(stream_->get_executor(), effects.latency);
            co_await timer.async_wait(use_awaitable);
        }
        const Answer answer = answerTo(request, effects);
        if (effects.cutsBeforeAnswer)
            co_return Next::close;
        shared_.log.finish(token, answer.status);
        const Next next = co_await send(answer, effects, request.method == "HEAD", parser.get().keep_alive());
        co_return next;
    }

    Answer answerTo(const RecordedRequest& request, const FaultEffects& effects) {
        try {
            for (const auto& hook : effects.hooks)
                hook();
            Answer answer = effects.status ? scriptedError(effects) : shared_.services.answer(request);
            applyEffects(effects, answer);
            return answer;
        } catch (const std::exception& failure) {
            shared_.failed(request.method + " " + request.target + ": " + failure.what());
            return googleError(500, "internalError", failure.what());
        }
    }

    asio::awaitable<Next> send(Answer answer, FaultEffects effects, bool isHead, bool isKeptAlive) {
        const std::int64_t size = answer.bodySize();
        const std::int64_t end =
            std::min({size, effects.cutAfter.value_or(size), effects.stallAfter.value_or(size)});
        // The head travels with the first part, so that a small answer is one packet.
        std::string pending =
            answerHead(answer, effects.chunked ? std::nullopt : std::optional(size), isKeptAlive);
        for (std::int64_t sent = 0; !isHead && sent < end;) {
            const std::int64_t count = std::min(end - sent, partSize);
            pending += framed(bodyPart(answer, sent, count), effects.chunked);
            sent += count;
            co_await asio::async_write(*stream_, asio::buffer(pending), use_awaitable);
            pending.clear();
        }
        const bool isWhole = !effects.cutAfter && !effects.stallAfter;
        if (effects.chunked && !isHead && isWhole)
            pending += "0\r\n\r\n";
        if (!pending.empty())
            co_await asio::async_write(*stream_, asio::buffer(pending), use_awaitable);
        if (effects.stallAfter)
            co_await clientLeaves();
        co_return isWhole&& isKeptAlive ? Next::keepAlive : Next::close;
    }

    static std::string framed(std::string part, bool isChunked) {
        if (!isChunked)
            return part;
        std::array<char, 20> length{};
        const auto [end, error] =
            std::to_chars(length.data(), length.data() + length.size(), part.size(), 16);
        return std::string(length.data(), end) + "\r\n" + part + "\r\n";
    }

    /// Waits until nothing more can come: the read ends with an error.
    asio::awaitable<void> clientLeaves() {
        std::array<char, 256> ignored{};
        for (;;)
            co_await stream_->async_read_some(asio::buffer(ignored), use_awaitable);
    }

    Shared& shared_;
    asio::ip::tcp::socket socket_;
    std::size_t number_;
    std::string host_;
    std::optional<Stream> stream_;
    boost::beast::flat_buffer buffer_;
};

} // namespace

asio::awaitable<void> serveConnection(Shared& shared, asio::ip::tcp::socket socket) {
    ProxyConnection connection(shared, std::move(socket));
    try {
        co_await connection.serve();
    } catch (const boost::system::system_error&) {
        // The client left or does not trust us: the ordinary end of a connection.
    }
}

} // namespace marrowbox::sandbox
