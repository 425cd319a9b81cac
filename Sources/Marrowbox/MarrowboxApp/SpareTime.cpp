#include "Marrowbox/MarrowboxApp/SpareTime.h"

namespace marrowbox {

namespace {

// In milliseconds. A piece that has been begun is finished, so that a turn takes a little longer.
constexpr int turn = 1;
constexpr int pause = 2;

} // namespace

void SpareTime::incubatingObjectCountChanged(int count) {
    if (count > 0 && !timer_.isActive())
        timer_.start(pause, Qt::PreciseTimer, this);
}

void SpareTime::timerEvent(QTimerEvent*) {
    timer_.stop();
    incubateFor(turn);
    incubatingObjectCountChanged(incubatingObjectCount());
}

} // namespace marrowbox
