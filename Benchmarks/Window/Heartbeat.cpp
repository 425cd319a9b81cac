#include "Window/Heartbeat.h"

#include <pthread.h>
#include <stdexcept>

namespace marrowbox::bench {

namespace {

clockid_t workClockOfThisThread() {
    clockid_t clock{};
    if (::pthread_getcpuclockid(::pthread_self(), &clock) != 0)
        throw std::runtime_error("This thread’s work cannot be measured.");
    return clock;
}

} // namespace

Heartbeat::Heartbeat() : workClock_(workClockOfThisThread()), thread_([this] { beat(); }) {
}

Heartbeat::~Heartbeat() {
    {
        const std::lock_guard guard(lock_);
        isEnding_ = true;
    }
    ended_.notify_one();
    thread_.join();
}

void Heartbeat::beat() {
    std::unique_lock guard(lock_);
    while (!ended_.wait_for(guard, std::chrono::milliseconds(1), [this] { return isEnding_; }))
        if (!isUnderWay_.exchange(true))
            QMetaObject::invokeMethod(
                &here_, [this, sent = Time::now(), workBefore = work()] { arrived(sent, workBefore); });
}

std::chrono::nanoseconds Heartbeat::work() const {
    timespec used{};
    ::clock_gettime(workClock_, &used);
    return std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec);
}

void Heartbeat::arrived(Time::time_point sent, std::chrono::nanoseconds workBefore) {
    const std::chrono::duration<double, std::milli> wait = Time::now() - sent;
    if (wait > longest_) {
        longest_ = wait;
        work_ = work() - workBefore;
    }
    isUnderWay_ = false;
}

} // namespace marrowbox::bench
