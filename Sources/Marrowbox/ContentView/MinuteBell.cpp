#include "Marrowbox/ContentView/MinuteBell.h"

#include "Platform/Cancellation.h"

#include <boost/asio/co_spawn.hpp>
#include <cmath>
#include <utility>

namespace marrowbox {

namespace {

std::chrono::duration<double> untilNextMinute(Date now) {
    constexpr double minute = 60;
    const double since = now.secondsSinceReference - std::floor(now.secondsSinceReference / minute) * minute;
    return std::chrono::duration<double>(minute - since);
}

} // namespace

MinuteBell::MinuteBell(const AppSurroundings& surroundings, QObject* parent)
    : QObject(parent), clock_(surroundings.clock), wait_(surroundings.wait), main_(surroundings.main) {
}

MinuteBell::~MinuteBell() {
    setOn(false);
}

void MinuteBell::setOn(bool on) {
    if (on == isOn())
        return;
    if (!on) {
        std::exchange(ringing_, std::nullopt)->request_stop();
        return;
    }
    ringing_.emplace();
    asio::co_spawn(main_, keepRinging(this, clock_, wait_, ringing_->get_token()),
                   [](std::exception_ptr thrown) {
                       try {
                           if (thrown)
                               std::rethrow_exception(thrown);
                       } catch (const CancellationError&) { // switched off
                       }
                   });
}

/// The bell is there for as long as nobody asked for a stop.
asio::awaitable<void> MinuteBell::keepRinging(MinuteBell* bell, Clock clock, Wait wait,
                                              std::stop_token stop) {
    for (;;) {
        co_await wait(untilNextMinute(clock()), stop);
        throwIfCancelled(stop);
        emit bell->rang();
        throwIfCancelled(stop);
    }
}

} // namespace marrowbox
