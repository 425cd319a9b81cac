#pragma once

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <cstdint>
#include <string>
#include <string_view>

namespace marrowbox::test {

/// A connection to a port of the loopback interface, as a browser or a stranger would open one. Blocking.
class LoopbackPeer {
  public:
    explicit LoopbackPeer(std::uint16_t port) { connect(port); }
    /// Connects later.
    LoopbackPeer() { socket_.open(boost::asio::ip::tcp::v4()); }

    void connect(std::uint16_t port,
                 boost::asio::ip::address_v4 address = boost::asio::ip::address_v4::loopback()) {
        socket_.connect({address, port});
        socket_.set_option(boost::asio::ip::tcp::no_delay(true));
    }

    /// A peer that has been dropped cannot send; that shows in reply().
    void send(std::string_view bytes) {
        boost::system::error_code ignored;
        boost::asio::write(socket_, boost::asio::buffer(bytes), ignored);
    }
    void finishSending() { socket_.shutdown(boost::asio::ip::tcp::socket::shutdown_send); }
    /// All that comes until the other side closes.
    std::string reply() {
        std::string bytes;
        boost::system::error_code ended;
        boost::asio::read(socket_, boost::asio::dynamic_buffer(bytes), ended);
        return bytes;
    }

  private:
    boost::asio::io_context context_;
    boost::asio::ip::tcp::socket socket_{context_};
};

/// The reply to a request for a target.
inline std::string get(std::uint16_t port, const std::string& target) {
    LoopbackPeer peer(port);
    peer.send("GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    return peer.reply();
}

} // namespace marrowbox::test
