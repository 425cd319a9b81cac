#pragma once

#include "Marrowbox/ContentView/MainWindowModel.h"
#include "ScriptedState.h"
#include "StoreWorld.h"

#include <QObject>
#include <memory>

namespace marrowbox::gallery {

/// A program for one picture of the main window: a store with some backups, whose fields a scene then sets.
class ContentWorld : public QObject {
  public:
    explicit ContentWorld(QObject* parent);

    // From nothing to a year of use.
    void begin(const AppConfiguration& configuration);
    /// Three backups, the first of them selected and never run.
    void beginWithBackups();
    /// The selected backup has a history of so many snapshots, with their runs and sizes.
    void addHistory(std::size_t count);
    /// The newest run ended otherwise.
    void endLastRun(RunOutcome outcome, const std::string& detail);
    void run(const std::string& progress);
    void mountNewest();

    AppState& state() { return test::scripted(*world_.store); }
    test::StoreWorld& world() { return world_; }
    MainWindowModel& window() { return *window_; }

  private:
    test::StoreWorld world_;
    std::unique_ptr<MainWindowModel> window_;
};

} // namespace marrowbox::gallery
