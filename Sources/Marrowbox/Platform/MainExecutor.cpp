#include "Marrowbox/Platform/MainExecutor.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <mutex>
#include <utility>

namespace marrowbox {

namespace {

const QEvent::Type workEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

class Work : public QEvent {
  public:
    explicit Work(std::function<void()> work) : QEvent(workEvent), work_(std::move(work)) {}
    std::function<void()> take() { return std::exchange(work_, nullptr); }

  private:
    std::function<void()> work_;
};

} // namespace

class MainExecutor::Queue : public QObject {
  public:
    void post(std::function<void()> work) {
        const std::lock_guard lock(mutex_);
        if (!isClosed_)
            QCoreApplication::postEvent(this, new Work(std::move(work)));
    }
    void close() {
        {
            const std::lock_guard lock(mutex_);
            isClosed_ = true;
        }
        QCoreApplication::removePostedEvents(this, workEvent);
    }

  protected:
    bool event(QEvent* event) override {
        if (event->type() != workEvent)
            return QObject::event(event);
        static_cast<Work*>(event)->take()();
        return true;
    }

  private:
    std::mutex mutex_;
    bool isClosed_ = false;
};

MainExecutor::MainExecutor(std::shared_ptr<Queue> queue, asio::execution_context& waiting)
    : queue_(std::move(queue)), waiting_(&waiting) {
}

MainExecutor MainExecutor::onThisThread(asio::execution_context& waiting) {
    auto queue = std::make_shared<Queue>();
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, queue.get(),
                     [queue = queue.get()] { queue->close(); });
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
