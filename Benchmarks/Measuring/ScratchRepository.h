#pragma once

#include "Repository/BackupRepository.h"

#include <string>

namespace marrowbox::bench {

/// The benchmarks' repository in a folder, which exists already.
BackupRepository repositoryIn(const fs::path& folder);

/// A repository in a folder of its own, under the temporary folder unless told otherwise, removed with the
/// object.
class ScratchRepository {
  public:
    explicit ScratchRepository(const std::string& name, const fs::path& under = fs::temp_directory_path());
    ScratchRepository(const ScratchRepository&) = delete;
    ScratchRepository& operator=(const ScratchRepository&) = delete;
    ~ScratchRepository();

    const BackupRepository& repository() const { return repository_; }
    const fs::path& folder() const { return folder_; }
    /// Writes a manifest without looking for its objects.
    void publish(const Snapshot& snapshot) const;
    /// Puts a file of the right size in the place of each object. They are hard links of a few files, since a
    /// run that changes nothing reads of an object only its metadata.
    void placeObjects(const Snapshot& snapshot) const;

  private:
    fs::path folder_;
    BackupRepository repository_;
};

} // namespace marrowbox::bench
