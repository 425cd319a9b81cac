#include "Demo/Browser.h"

#include "Models/BackupError.h"
#include "Processes/ProcessRunner.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace marrowbox::demo {

namespace {

/// The address behind a link of a page, by the words that one clicks.
std::string linkOf(const std::string& page, const std::string& words) {
    constexpr std::string_view opening = "<a href=\"";
    const auto end = page.find("\">" + words + "</a>");
    const auto begin = end == std::string::npos ? end : page.rfind(opening, end);
    if (begin == std::string::npos)
        throw BackupError("The consent page has no link “" + words + "”.");
    std::string address = page.substr(begin + opening.size(), end - begin - opening.size());
    constexpr std::string_view ampersand = "&amp;";
    for (auto at = address.find(ampersand); at != std::string::npos; at = address.find(ampersand, at + 1))
        address.replace(at, ampersand.size(), "&");
    return address;
}

} // namespace

Browser::Browser(asio::any_io_executor executor, ProcessSurroundings surroundings,
                 const std::stop_token& stop)
    : executor_(std::move(executor)), surroundings_(std::move(surroundings)),
      proxy_(surroundings_.environment.at("HTTPS_PROXY")),
      authority_(surroundings_.environment.at("SSL_CERT_FILE")),
      onStop_(stop, [closing = closing_]() mutable { closing.request_stop(); }),
      finished_(executor_, asio::steady_timer::time_point::max()) {
}

bool Browser::open(const std::string& address) {
    isBusy_ = true;
    asio::co_spawn(executor_, consent(address), [this](std::exception_ptr failure, std::string page) {
        failure_ = std::move(failure);
        page_ = std::move(page);
        isBusy_ = false;
        if (failure_)
            closing_.request_stop();
        finished_.cancel();
    });
    return true;
}

asio::awaitable<std::string> Browser::lastPage() {
    boost::system::error_code ignored;
    while (isBusy_)
        co_await finished_.async_wait(asio::redirect_error(asio::use_awaitable, ignored));
    if (failure_)
        std::rethrow_exception(failure_);
    co_return page_;
}

asio::awaitable<std::string> Browser::consent(std::string address) {
    const std::string consentPage = co_await fetched(std::move(address));
    std::string answer = co_await fetched(linkOf(consentPage, "Allow"));
    co_return answer;
}

asio::awaitable<std::string> Browser::fetched(std::string address) {
    // The user's own settings of curl are left out, and what is sent on to this machine needs no proxy.
    std::vector<std::string> arguments{"--disable",  "--silent",   "--show-error", "--fail",    "--globoff",
                                       "--location", "--max-time", "60",           "--noproxy", "127.0.0.1",
                                       "--proxy",    proxy_,       "--cacert",     authority_,  address};
    const auto result = co_await ProcessRunner::run("/usr/bin/curl", std::move(arguments), {}, surroundings_,
                                                    closing_.get_token());
    if (result.status != 0)
        throw BackupError("The browser could not show a page: " + result.output);
    co_return result.output;
}

} // namespace marrowbox::demo
