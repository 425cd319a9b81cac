#include "Web.h"

#include "Platform/Cancellation.h"

#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace marrowbox::test {

struct HeldWeb::State {
    asio::steady_timer gate;
    bool isHeld = true;
};

namespace {

asio::awaitable<HTTPResponse> answer(int status, std::string body) {
    co_return HTTPResponse{.status = status, .body = std::move(body)};
}

asio::awaitable<HTTPResponse> fail() {
    throw TransportError(TransportErrorCode::other, "The network is unreachable.");
    co_return HTTPResponse{};
}

template <typename State>
asio::awaitable<HTTPResponse> answerLater(std::shared_ptr<State> state, std::stop_token stop) {
    if (state->isHeld) {
        const std::stop_callback onStop(stop, [state] { state->gate.cancel(); });
        boost::system::error_code ended;
        co_await state->gate.async_wait(asio::redirect_error(asio::use_awaitable, ended));
    }
    throwIfCancelled(stop);
    co_return HTTPResponse{.status = 200, .body = "{}"};
}

} // namespace

HTTPSend answering(int status, std::string body) {
    return [status, body = std::move(body)](std::shared_ptr<const HTTPRequest>, std::stop_token) {
        return answer(status, body);
    };
}

HTTPSend offline() {
    return [](std::shared_ptr<const HTTPRequest>, std::stop_token) { return fail(); };
}

HeldWeb::HeldWeb(const asio::any_io_executor& executor)
    : state_(std::make_shared<State>(
          State{.gate = asio::steady_timer(executor, asio::steady_timer::time_point::max())})) {
}

HTTPSend HeldWeb::send() const {
    return [state = state_](std::shared_ptr<const HTTPRequest>, std::stop_token stop) {
        return answerLater(state, std::move(stop));
    };
}

void HeldWeb::letGo() {
    state_->isHeld = false;
    state_->gate.cancel();
}

} // namespace marrowbox::test
