#include "Demo/SigningIn.h"

#include "Demo/Browser.h"
#include "GoogleOAuth/GoogleSignIn.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <iostream>

namespace marrowbox::demo {

namespace {

/// Runs on the executor, which is serial.
asio::awaitable<OAuthToken> signedInHere(asio::any_io_executor executor, HTTP http,
                                         ProcessSurroundings surroundings, OAuthClient client,
                                         std::stop_token stop) {
    Browser browser(executor, std::move(surroundings), stop);
    const GoogleSignIn signIn(
        {.executor = executor, .http = std::move(http), .openBrowser = [&](const std::string& address) {
             return browser.open(address);
         }});
    std::exception_ptr failure;
    OAuthToken token;
    try {
        token = co_await signIn.authorize({.client = std::move(client)}, browser.stopToken());
    } catch (...) {
        failure = std::current_exception();
    }
    // A browser that failed has given the sign-in up, and knows the reason.
    const std::string page = co_await browser.lastPage();
    if (failure)
        std::rethrow_exception(failure);
    std::cout << "  The browser shows: " << page << std::endl;
    co_return token;
}

} // namespace

asio::awaitable<OAuthToken> signedIn(asio::any_io_executor executor, HTTP http,
                                     ProcessSurroundings surroundings, OAuthClient client,
                                     std::stop_token stop) {
    auto strand = asio::make_strand(executor);
    auto work =
        signedInHere(strand, std::move(http), std::move(surroundings), std::move(client), std::move(stop));
    OAuthToken token = co_await asio::co_spawn(strand, std::move(work), asio::use_awaitable);
    co_return token;
}

} // namespace marrowbox::demo
