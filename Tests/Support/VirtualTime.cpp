#include "Support/VirtualTime.h"

#include "Platform/Cancellation.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <vector>

namespace marrowbox::test {

struct VirtualTime::State {
    /// A wait under way: its timer never fires by itself, and is cancelled to end it.
    struct Waiting {
        double until = 0;
        std::shared_ptr<asio::steady_timer> timer;
    };

    Date now;
    double elapsed = 0; ///< Of the monotonic clock.
    std::vector<Waiting> waiting;
};

namespace {

template <typename State>
asio::awaitable<void> waitUntil(std::shared_ptr<State> state, asio::io_context& context,
                                std::chrono::duration<double> span, std::stop_token stop) {
    throwIfCancelled(stop);
    auto timer = std::make_shared<asio::steady_timer>(context, asio::steady_timer::time_point::max());
    state->waiting.push_back({state->elapsed + span.count(), timer});
    const std::stop_callback onStop(stop, [timer] { timer->cancel(); });
    boost::system::error_code ended;
    co_await timer->async_wait(asio::redirect_error(asio::use_awaitable, ended));
    std::erase_if(state->waiting, [&](const auto& wait) { return wait.timer == timer; });
    throwIfCancelled(stop);
}

} // namespace

VirtualTime::VirtualTime(Date now)
    : state_(std::make_shared<State>()), context_(std::make_unique<asio::io_context>()) {
    state_->now = now;
}

VirtualTime::~VirtualTime() {
    state_->waiting.clear();
}

void VirtualTime::abandon() {
    state_->waiting.clear();
    context_ = std::make_unique<asio::io_context>();
}

Clock VirtualTime::clock() const {
    return [state = state_] { return state->now; };
}

Wait VirtualTime::wait() const {
    return [state = state_, &context = *context_](std::chrono::duration<double> span, std::stop_token stop) {
        return waitUntil(state, context, span, std::move(stop));
    };
}

Date VirtualTime::now() const {
    return state_->now;
}

std::size_t VirtualTime::waits() const {
    return state_->waiting.size();
}

void VirtualTime::settle() {
    context_->restart();
    context_->poll();
}

void VirtualTime::advance(double seconds) {
    settle();
    const double end = state_->elapsed + seconds;
    for (;;) {
        const auto next = std::ranges::min_element(state_->waiting, {}, &State::Waiting::until);
        const double until = next == state_->waiting.end() ? end : std::min(next->until, end);
        state_->now = state_->now + (until - state_->elapsed);
        state_->elapsed = until;
        if (next == state_->waiting.end() || next->until > end)
            return settle();
        const auto timer = next->timer;
        state_->waiting.erase(next);
        timer->cancel();
        settle();
    }
}

void VirtualTime::jump(double seconds) {
    state_->now = state_->now + seconds;
}

} // namespace marrowbox::test
