#pragma once

#include "Marrowbox/AppStore/AppState.h"

#include <QObject>
#include <functional>
#include <optional>

namespace marrowbox {

/// A word from the program on the user's desktop.
struct RunNotice {
    QString title;
    QString body;

    friend bool operator==(const RunNotice&, const RunNotice&) = default;
};

/// What the user should hear about a finished run: that it failed, or that it caught up on missed ones.
std::optional<RunNotice> noticeOf(const RunRecord& run);

/// Tells the desktop about runs as they finish. On the main thread.
class RunNotices : public QObject {
    Q_OBJECT
  public:
    /// The state and its announcer outlive it.
    RunNotices(const AppState& state, StoreChanges& changes, std::function<void(const RunNotice&)> tell);

  private:
    void follow(StoreField field);

    const AppState& state_;
    std::function<void(const RunNotice&)> tell_;
    std::optional<Uuid> running_; ///< The record of the run in progress.
};

} // namespace marrowbox
