#pragma once

#include "Repository/BackupRepository.h"
#include "Support/ScratchFolder.h"

#include <map>
#include <string>
#include <vector>

namespace marrowbox::test {

/// A destination of the generated unit's backups, on which runs are disturbed. It also holds files that are
/// none of a run's business.
class Destination {
  public:
    /// A new repository with a snapshot of each generation from the first to this one.
    explicit Destination(int generations);
    /// A copy of another one as it is now.
    Destination(const Destination& other);
    Destination& operator=(const Destination&) = delete;

    fs::path path() const { return scratch_ / "Disk"; }
    BackupRepository repository() const;

    /// Backs up a generation in this process.
    Snapshot backUp(int generation) const;

    /// Expects that the history reads and has a snapshot of each of these generations, in this order, and
    /// that every byte of their objects is what the source had.
    void expectHistory(const std::vector<int>& generations) const;
    /// Expects that whatever is none of a run's business is as it was.
    void expectForeignFilesUntouched() const;
    /// Names of the work folders of runs.
    std::vector<std::string> workFolders() const;

  private:
    /// Kind, mode, time and content of each foreign file, by its path.
    std::map<std::string, std::string> foreignFiles() const;

    ScratchFolder scratch_;
    std::map<std::string, std::string> foreignFilesBefore_;
};

} // namespace marrowbox::test
