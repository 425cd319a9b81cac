#pragma once

#include <QObject>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <mutex>
#include <thread>

namespace marrowbox::bench {

/// Sends this thread an event each millisecond, and notes how long the slowest one had to wait for its turn:
/// as long as a key or a click would have had to. While one waits, no other is sent.
class Heartbeat {
  public:
    Heartbeat();
    Heartbeat(const Heartbeat&) = delete;
    Heartbeat& operator=(const Heartbeat&) = delete;
    ~Heartbeat();

    std::chrono::duration<double, std::milli> longestWait() const { return longest_; }
    /// For how much of that wait this thread was at work: the rest, the machine gave to others.
    std::chrono::duration<double, std::milli> workInLongestWait() const { return work_; }

  private:
    using Time = std::chrono::steady_clock;

    void beat();
    void arrived(Time::time_point sent, std::chrono::nanoseconds workBefore);
    std::chrono::nanoseconds work() const;

    QObject here_;
    const clockid_t workClock_;
    std::chrono::duration<double, std::milli> longest_{0};
    std::chrono::duration<double, std::milli> work_{0};
    std::mutex lock_;
    std::condition_variable ended_;
    bool isEnding_ = false;
    std::atomic<bool> isUnderWay_ = false;
    std::thread thread_;
};

} // namespace marrowbox::bench
