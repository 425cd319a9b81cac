#pragma once

#include "Platform/Cancellation.h"
#include "Platform/Executors.h"

#include <memory>
#include <mutex>
#include <vector>

namespace marrowbox::test {

/// Waits that take no time and remember how long they were meant to be, in seconds.
class RecordedWaits {
  public:
    Wait wait() const {
        return [state = state_](std::chrono::duration<double> span, std::stop_token stop) {
            return record(state, span, std::move(stop));
        };
    }
    std::vector<double> seconds() const {
        const std::lock_guard lock(state_->mutex);
        return state_->seconds;
    }

  private:
    struct State {
        std::mutex mutex;
        std::vector<double> seconds;
    };
    static asio::awaitable<void> record(std::shared_ptr<State> state, std::chrono::duration<double> span,
                                        std::stop_token stop) {
        throwIfCancelled(stop);
        const std::lock_guard lock(state->mutex);
        state->seconds.push_back(span.count());
        co_return;
    }

    std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace marrowbox::test
