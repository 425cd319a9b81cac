#pragma once

#include "Marrowbox/AppStore/AppStore.h"

#include <QObject>
#include <memory>
#include <optional>
#include <stop_token>

namespace marrowbox {

/// Rings at each full minute of the clock while it is on, for texts that follow the time. Main thread.
class MinuteBell : public QObject {
    Q_OBJECT

  public:
    /// Begins silent.
    explicit MinuteBell(const AppSurroundings& surroundings, QObject* parent = nullptr);
    ~MinuteBell() override;

    bool isOn() const { return ringing_.has_value(); }
    void setOn(bool on);

  signals:
    void rang();

  private:
    static asio::awaitable<void> keepRinging(MinuteBell* bell, Clock clock, Wait wait, std::stop_token stop);

    Clock clock_;
    Wait wait_;
    asio::any_io_executor main_;
    std::optional<std::stop_source> ringing_;
};

} // namespace marrowbox
