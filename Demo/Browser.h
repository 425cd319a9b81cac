#pragma once

#include "Processes/ProcessSurroundings.h"

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/steady_timer.hpp>
#include <exception>
#include <functional>
#include <stop_token>
#include <string>

namespace marrowbox::demo {

namespace asio = boost::asio;

/// The browser of somebody who signs in: it shows the consent page, the person follows its link "Allow", and
/// the page sends it on to the port where the program waits. curl moves the bytes, so that nothing of the
/// program is on this side. Used on its executor alone, which is serial; outlives what it opened.
class Browser {
  public:
    /// The surroundings say by which proxy (HTTPS_PROXY) and with which certificates (SSL_CERT_FILE) it
    /// reaches the web. A stop closes it.
    Browser(asio::any_io_executor executor, ProcessSurroundings surroundings, const std::stop_token& stop);
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    /// Begins to show a page. Once.
    bool open(const std::string& address);
    /// Stopped when the browser failed or was stopped: nobody will sign in any more.
    std::stop_token stopToken() const { return closing_.get_token(); }
    /// Waits until the browser is through, and gives the last page; an empty one when it was never opened.
    /// Throws BackupError when a page did not come or has no such link, and CancellationError.
    asio::awaitable<std::string> lastPage();

  private:
    asio::awaitable<std::string> consent(std::string address);
    asio::awaitable<std::string> fetched(std::string address);

    asio::any_io_executor executor_;
    ProcessSurroundings surroundings_;
    std::string proxy_;
    std::string authority_;
    std::stop_source closing_;
    std::stop_callback<std::function<void()>> onStop_;
    asio::steady_timer finished_;
    bool isBusy_ = false;
    std::string page_;
    std::exception_ptr failure_;
};

} // namespace marrowbox::demo
