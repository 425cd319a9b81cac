#pragma once

#include "Models/Snapshot.h"
#include "Models/SyncUnit.h"
#include "Platform/Files.h"

#include <string>

namespace marrowbox::test {

/// A unit whose repository on disk holds one snapshot of many kinds of files.
class BackedUpUnit {
  public:
    /// The folder for the repository, which is made, and the size of the largest file in bytes.
    explicit BackedUpUnit(fs::path destination, std::size_t largest = 3'000'001);

    const fs::path destination;
    SyncUnit unit;
    Snapshot snapshot;

    fs::path root() const { return destination / "Marrowbox" / unit.id.text(); }
    /// Where a file's content lies in the store.
    fs::path objectOf(std::string_view path) const;

    /// Every file and folder of the snapshot, and nothing else, with every byte.
    void expectWholeSnapshot(const fs::path& root) const;

  private:
    void addFolder(const std::string& path);
    void addFile(const std::string& path, const std::string& content);
};

} // namespace marrowbox::test
