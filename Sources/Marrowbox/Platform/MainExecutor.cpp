#include "Marrowbox/Platform/MainExecutor.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <deque>
#include <mutex>
#include <utility>

namespace marrowbox {

namespace {

const QEvent::Type workEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

} // namespace

/// The work waits in a list of its own, and an event each only calls for it: the thread sanitizer sees who
/// hands work to whom, and the application object never ends a piece of work under its own lock.
class MainExecutor::Queue : public QObject {
  public:
    void post(std::function<void()> work) {
        const std::lock_guard lock(mutex_);
        if (isClosed_)
            return;
        work_.push_back(std::move(work));
        QCoreApplication::postEvent(this, new QEvent(workEvent));
    }
    void close() {
        std::deque<std::function<void()>> dropped; // ends outside of the lock, which its end may need
        {
            const std::lock_guard lock(mutex_);
            isClosed_ = true;
            dropped.swap(work_);
        }
        QCoreApplication::removePostedEvents(this, workEvent);
    }

  protected:
    bool event(QEvent* event) override {
        if (event->type() != workEvent)
            return QObject::event(event);
        if (const auto work = next())
            work();
        return true;
    }

  private:
    std::function<void()> next() {
        const std::lock_guard lock(mutex_);
        if (work_.empty())
            return nullptr;
        std::function<void()> work = std::move(work_.front());
        work_.pop_front();
        return work;
    }

    std::mutex mutex_;
    std::deque<std::function<void()>> work_;
    bool isClosed_ = false;
};

MainExecutor::MainExecutor(std::shared_ptr<Queue> queue, asio::execution_context& waiting)
    : queue_(std::move(queue)), waiting_(&waiting) {
}

MainExecutor MainExecutor::onThisThread(asio::execution_context& waiting) {
    auto queue = std::make_shared<Queue>();
    const auto closeQueue = [queue = queue.get()] { queue->close(); };
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, queue.get(), closeQueue);
    // A loop that never ran does not quit, and work that waits may hold its own queue.
    QObject::connect(qApp, &QObject::destroyed, queue.get(), closeQueue);
    return {std::move(queue), waiting};
}

void MainExecutor::close() const {
    const auto kept = queue_; // work that is dropped may hold the last copy
    kept->close();
}

void MainExecutor::post(std::function<void()> work) const {
    queue_->post(std::move(work));
}

} // namespace marrowbox
