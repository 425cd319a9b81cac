#include "Marrowbox/Platform/MainExecutor.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
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
  protected:
    bool event(QEvent* event) override {
        if (event->type() != workEvent)
            return QObject::event(event);
        static_cast<Work*>(event)->take()();
        return true;
    }
};

MainExecutor::MainExecutor(std::shared_ptr<Queue> queue, asio::execution_context& waiting)
    : queue_(std::move(queue)), waiting_(&waiting) {
}

MainExecutor MainExecutor::onThisThread(asio::execution_context& waiting) {
    return {std::make_shared<Queue>(), waiting};
}

void MainExecutor::post(std::function<void()> work) const {
    QCoreApplication::postEvent(queue_.get(), new Work(std::move(work)));
}

} // namespace marrowbox
