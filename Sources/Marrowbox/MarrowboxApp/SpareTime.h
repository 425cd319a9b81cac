#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QQmlIncubationController>

namespace marrowbox {

/// Makes what the screens leave for later, as the rows of a history, one piece at a time, with events and
/// frames in between. The toolkit's own takes two thirds of a frame in one go: with a frame that is due at
/// the same moment, more than a whole one. Main thread.
class SpareTime : public QObject, public QQmlIncubationController {
  protected:
    void incubatingObjectCountChanged(int count) override;
    void timerEvent(QTimerEvent* event) override;

  private:
    QBasicTimer timer_;
};

} // namespace marrowbox
