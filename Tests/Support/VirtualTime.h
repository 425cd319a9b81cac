#pragma once

#include "Platform/Clock.h"
#include "Platform/Executors.h"

#include <boost/asio/io_context.hpp>
#include <memory>

namespace marrowbox::test {

/// A clock that stands still until the test moves it, and waits that end when it has come to their time. All
/// work runs on the one context that it has and turns.
class VirtualTime {
  public:
    explicit VirtualTime(Date now);
    VirtualTime(const VirtualTime&) = delete;
    VirtualTime& operator=(const VirtualTime&) = delete;
    ~VirtualTime();

    asio::io_context& context() { return *context_; }
    /// Drops all work and all waits where they stand, as a kill would, and begins with a fresh context.
    void abandon();

    Clock clock() const;
    Wait wait() const;
    Date now() const;
    /// How many waits are under way.
    std::size_t waits() const;

    /// Runs all work that does not wait for a time.
    void settle();
    /// Moves the clock by so many seconds, from one end of a wait to the next, and lets the work that each
    /// one starts come to its end.
    void advance(double seconds);
    /// Moves the clock at once, as a machine that slept: no wait comes to its end by that.
    void jump(double seconds);

  private:
    struct State;
    std::shared_ptr<State> state_; ///< Its timers go before their context.
    std::unique_ptr<asio::io_context> context_;
};

} // namespace marrowbox::test
