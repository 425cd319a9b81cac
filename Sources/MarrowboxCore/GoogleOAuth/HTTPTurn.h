#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

namespace marrowbox {

/// Joins two requests of which the second may leave only when the first is answered. The second is made ready
/// while the service works on the first, and the answer sends it on its way with no thread to be woken in
/// between. Any thread.
class HTTPTurn {
  public:
    /// Whether the body of an answer lets the next request leave. It runs on the network thread, for which
    /// all transfers wait, and does not throw.
    using Judge = std::function<bool(std::string_view body)>;

    explicit HTTPTurn(Judge judge) : judge_(std::move(judge)) {}

    /// The first send of the first request decides, once and before its outcome is reported: absent means
    /// that no answer of this kind came.
    void decide(const std::string_view* body) {
        State open = State::open;
        state_.compare_exchange_strong(open,
                                       body != nullptr && judge_(*body) ? State::passed : State::withheld);
    }
    bool hasPassed() const { return state_ == State::passed; }

  private:
    enum class State { open, passed, withheld };

    Judge judge_;
    std::atomic<State> state_ = State::open;
};

/// A request's place among others.
struct HTTPOrder {
    std::shared_ptr<HTTPTurn> turn;  ///< Decided by the answer to this request.
    std::shared_ptr<HTTPTurn> after; ///< What this request waits for, until it is cancelled if need be.
};

} // namespace marrowbox
