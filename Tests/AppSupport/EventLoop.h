#pragma once

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <functional>
#include <gtest/gtest.h>

namespace marrowbox::test {

/// Turns the event loop of this thread until something has happened; false when the time is up first. Only
/// events wake it.
inline bool turnUntil(const std::function<bool()>& hasHappened,
                      std::chrono::milliseconds time = std::chrono::seconds(20)) {
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.start(time);
    while (!hasHappened() && deadline.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return hasHappened();
}

/// A test that runs on an event loop.
class WithEventLoop : public testing::Test {
  private:
    int argumentCount_ = 0;
    QCoreApplication application_{argumentCount_, nullptr};
};

} // namespace marrowbox::test
