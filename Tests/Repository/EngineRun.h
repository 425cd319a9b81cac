#pragma once

#include "Repository/BackupEngine.h"
#include "ScriptedSource.h"
#include "TestRepository.h"

#include <memory>
#include <string>
#include <vector>

namespace marrowbox::test {

/// An engine with a repository, a scripted source and a clock that goes on by one second each time it is
/// asked.
class EngineRun {
  public:
    EngineRun() = default;
    explicit EngineRun(const fs::path& destination) : repository(destination) {}

    /// Runs to the end and gives the snapshot, or throws what stopped the run.
    Snapshot operator()();
    /// The sentence of the BackupError that stops the run. Fails the test unless the history, the lock and
    /// the work folders are as they were.
    std::string refusal();

    TestRepository repository;
    std::shared_ptr<ScriptedSource> source = std::make_shared<ScriptedSource>();
    std::vector<std::string> progress; ///< Of the latest run.
    std::stop_source stop;
    std::function<void(const std::string&)> onProgress;

  private:
    double now_ = 100;
};

} // namespace marrowbox::test
