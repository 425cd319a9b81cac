#pragma once

#include "Support/StorageModel.h"
#include "Support/WatchedProgram.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace marrowbox::test {

/// The changes that watched programs make to a folder, in their order. What stands in it at the beginning
/// counts as safely stored. Synchronising comes as late as it can: it is held until nobody else asks for
/// anything, so whoever does not wait for it is seen to be ahead of it.
class StorageRecording {
  public:
    explicit StorageRecording(std::filesystem::path folder);

    /// Answers a call of a watched program, and keeps what it is about to change.
    Answer note(const FileCall& call);
    /// A watched program has ended. Throws std::logic_error when the folder is not what the changes make of
    /// it.
    void endOfProgram();

    const StoredTree& before() const { return before_; }
    const std::vector<StorageChange>& changes() const { return changes_; }
    /// How many programs had ended after so many changes.
    int programsEnded(std::size_t changes) const;
    /// How many changes so many programs made.
    std::size_t changesOf(int programs) const;

  private:
    std::string relative(const std::filesystem::path& path) const;
    void keep(StorageChange change);
    /// Looks up what a file holds, for all writes to it since the last look.
    void look(const std::string& path);

    std::filesystem::path folder_;
    StoredTree before_;
    StorageModel model_;
    std::vector<StorageChange> changes_;
    std::vector<std::size_t> ends_; ///< Of programs, as positions in the changes.
    std::map<std::size_t, std::vector<std::size_t>> unseenWrites_; ///< By file, positions in the changes.
};

/// A state in which a power cut leaves the folder of a recording.
struct LeftByPowerCut {
    StoredTree tree;
    std::string words; ///< When the power was cut, and how, for a failure's trace.
    int programsEnded; ///< By then.
};

/// How much was tried.
struct PowerCutCount {
    std::size_t changes = 0;
    std::size_t cuts = 0;
    std::size_t states = 0; ///< That differ from each other.
};

/// Which moments are tried.
struct PowerCutMoments {
    int afterPrograms = 0; ///< From the end of so many programs on.
    int atMost = 1000;     ///< Of more than these, so many, spread evenly.
};

/// Cuts the power before the first change, after each, and in several ways, and hands over each state that
/// differs from those before it. Stops when the visitor says false.
PowerCutCount cutPowerEverywhere(const StorageRecording& recording, PowerCutMoments which,
                                 const std::function<bool(const LeftByPowerCut&)>& visit);

} // namespace marrowbox::test
