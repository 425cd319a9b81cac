#include "GoogleOAuth/HTTPSession.h"

#include "GoogleOAuth/HTTPNetwork.h"
#include "Platform/Cancellation.h"

#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <cstdlib>

namespace marrowbox {

namespace {

/// Resumes a handler on its own executor, which is kept at work until then.
template <typename Handler>
class PostedCompletion final : public HTTPCompletion {
  public:
    explicit PostedCompletion(Handler handler)
        : handler_(std::move(handler)), work_(asio::make_work_guard(handler_)) {}

    void post(std::exception_ptr failure, HTTPResponse response) override {
        const auto executor = work_.get_executor();
        asio::post(executor, [handler = std::move(handler_), failure = std::move(failure),
                              response = std::move(response)]() mutable {
            handler(std::move(failure), std::move(response));
        });
        work_.reset();
    }

  private:
    Handler handler_;
    asio::executor_work_guard<asio::associated_executor_t<Handler>> work_;
};

} // namespace

HTTPSettings HTTPSettings::fromEnvironment() {
    HTTPSettings settings;
    if (const char* file = std::getenv("SSL_CERT_FILE"); file != nullptr && *file != '\0')
        settings.certificateFile = file;
    return settings;
}

HTTPSession::HTTPSession(HTTPSettings settings) : network_(std::make_shared<Network>(std::move(settings))) {
}

HTTPSession::~HTTPSession() {
    network_->stop();
}

asio::awaitable<HTTPResponse> HTTPSession::send(std::shared_ptr<const HTTPRequest> request,
                                                std::stop_token stop) {
    throwIfCancelled(stop);
    const auto network = network_;
    const auto transfer = std::make_shared<HTTPTransfer>(std::move(request));
    const std::stop_callback onStop(stop, [network, transfer] { network->cancel(transfer); });
    HTTPResponse response = co_await perform(network, transfer);
    co_return response;
}

asio::awaitable<HTTPResponse> HTTPSession::perform(std::shared_ptr<Network> network,
                                                   std::shared_ptr<HTTPTransfer> transfer) {
    const auto initiate = [network, transfer]<typename Handler>(Handler&& handler) {
        transfer->completeWith(
            std::make_unique<PostedCompletion<std::decay_t<Handler>>>(std::forward<Handler>(handler)));
        network->submit(transfer);
    };
    return asio::async_initiate<const asio::use_awaitable_t<>, void(std::exception_ptr, HTTPResponse)>(
        initiate, asio::use_awaitable);
}

} // namespace marrowbox
