#include "Browser.h"

#include "Web.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>
#include <gtest/gtest.h>
#include <regex>

namespace marrowbox::test {

namespace {

std::string decoded(const std::string& text) {
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            plain += text[at];
            continue;
        }
        plain += static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, 16));
        at += 2;
    }
    return plain;
}

std::string tokenAnswer(const GoogleAccount& account) {
    std::string scope = "openid email profile https://www.googleapis.com/auth/drive.readonly";
    if (account.canSendEmail)
        scope += " https://www.googleapis.com/auth/gmail.send";
    return boost::json::serialize(boost::json::value{
        {"access_token", "access"}, {"refresh_token", "refresh"}, {"expires_in", 3599}, {"scope", scope}});
}

std::string profileAnswer(const GoogleAccount& account) {
    return boost::json::serialize(boost::json::value{
        {"sub", account.id}, {"email", account.email}, {"email_verified", true}, {"name", account.name}});
}

} // namespace

Browser::Browser(StoreWorld& world) : world_(world) {
}

std::string Browser::page() {
    world_.time.settle();
    std::string address;
    for (const std::string& call : world_.desktop.calls())
        if (call.starts_with("openPage "))
            address = call;
    return address;
}

std::string Browser::queryItem(const std::string& name) {
    const std::string address = page();
    std::smatch match;
    return std::regex_search(address, match, std::regex("[?&]" + name + "=([^&]*)")) ? decoded(match[1]) : "";
}

std::string Browser::scope() {
    return queryItem("scope");
}

std::string Browser::hint() {
    return queryItem("login_hint");
}

void Browser::consent(const GoogleAccount& account) {
    world_.web = [account](std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
        const bool isToken = request->url == "https://oauth2.googleapis.com/token";
        return answering(200, isToken ? tokenAnswer(account) : profileAnswer(account))(request, stop);
    };
    const std::string redirect = queryItem("redirect_uri");
    const auto port = static_cast<std::uint16_t>(std::stoi(redirect.substr(redirect.rfind(':') + 1)));
    asio::io_context context;
    asio::ip::tcp::socket socket(context);
    socket.connect({asio::ip::address_v4::loopback(), port});
    const std::string request =
        "GET /?state=" + queryItem("state") + "&code=code HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";
    asio::write(socket, asio::buffer(request));
    // The kernel delivers on the loopback interface at once, and the world looks until it has seen it all.
    for (int turn = 0; turn < 100 && *world_.state().isConnecting; ++turn)
        world_.time.settle();
    EXPECT_FALSE(*world_.state().isConnecting) << "the sign-in goes on";
}

} // namespace marrowbox::test
