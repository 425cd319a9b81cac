#pragma once

#include "Marrowbox/AppStore/AppStore.h"

#include <QObject>
#include <functional>
#include <memory>
#include <qqmlregistration.h>

namespace marrowbox {

/// Ends the program, and asks before that while a backup runs. A backup that is cancelled winds down first,
/// however long that takes, so that its record and its work folder are in order. On the main thread.
class Quitting : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(bool isAsking READ isAsking NOTIFY changed)
    Q_PROPERTY(bool isWindingDown READ isWindingDown NOTIFY changed)
    Q_PROPERTY(QString question READ question CONSTANT)
    Q_PROPERTY(QString explanation READ explanation CONSTANT)
    Q_PROPERTY(QString keepRunningText READ keepRunningText CONSTANT)
    Q_PROPERTY(QString quitText READ quitText CONSTANT)

  public:
    /// The last argument ends the program.
    Quitting(std::shared_ptr<AppStore> store, std::function<void()> end);

    bool isAsking() const { return isAsking_; }
    bool isWindingDown() const { return isWindingDown_; }
    static QString question();
    static QString explanation();
    static QString keepRunningText();
    static QString quitText();

    /// As a person asks for it.
    Q_INVOKABLE void request();
    /// As the system asks for it, which does not wait for answers.
    void windDown();

    // The answers.
    Q_INVOKABLE void keepRunning();
    Q_INVOKABLE void quit();

  signals:
    void changed();

  private:
    void follow(StoreField field);

    std::shared_ptr<AppStore> store_;
    std::function<void()> end_;
    bool isAsking_ = false;
    bool isWindingDown_ = false;
};

} // namespace marrowbox
