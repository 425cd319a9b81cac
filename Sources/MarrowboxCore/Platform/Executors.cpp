#include "Platform/Executors.h"

#include "Platform/Cancellation.h"

#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <memory>

namespace marrowbox {

namespace {

asio::awaitable<void> waitOnTimer(std::chrono::duration<double> span, std::stop_token stop) {
    throwIfCancelled(stop);
    // A strand of its own, since the stop arrives from any thread and a timer is not safe to share.
    const auto executor = co_await asio::this_coro::executor;
    auto strand = asio::make_strand(executor);
    auto timer = std::make_shared<asio::steady_timer>(strand);
    auto cancelled = std::make_shared<bool>(false);
    timer->expires_after(std::chrono::ceil<std::chrono::steady_clock::duration>(span));

    const std::stop_callback onStop(stop, [strand, timer, cancelled] {
        asio::post(strand, [timer, cancelled] {
            *cancelled = true;
            timer->cancel();
        });
    });
    // The wait starts on the strand, so that a cancel posted before it is seen by it.
    co_await asio::co_spawn(
        strand,
        [](std::shared_ptr<asio::steady_timer> waiting,
           std::shared_ptr<bool> given) -> asio::awaitable<void> {
            if (*given)
                co_return;
            boost::system::error_code ended;
            co_await waiting->async_wait(asio::redirect_error(asio::use_awaitable, ended));
        }(timer, cancelled),
        asio::use_awaitable);
    throwIfCancelled(stop);
}

} // namespace

Wait timerWait() {
    return waitOnTimer;
}

} // namespace marrowbox
