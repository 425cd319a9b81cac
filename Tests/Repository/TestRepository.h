#pragma once

#include "Repository/BackupRepository.h"
#include "Support/ScratchFolder.h"

#include <map>
#include <string>
#include <string_view>

namespace marrowbox::test {

/// What is said of a manifest with a text that is no hash.
inline const std::string invalidHash = "Invalid content reference in the backup.";

/// A repository in a scratch folder, with ways to put things into it behind the program's back.
class TestRepository {
  public:
    TestRepository();
    explicit TestRepository(const fs::path& destination);

    const BackupRepository& operator*() const { return repository_; }
    const BackupRepository* operator->() const { return &repository_; }
    const fs::path& destination() const { return destination_; }
    fs::path operator/(std::string_view name) const { return repository_.root() / name; }

    /// Puts an object of these bytes into the store and gives its hash.
    ObjectHash store(std::string_view content) const;
    fs::path object(std::string_view content) const;
    /// Stores each entry's object, for entries made of the given contents, and writes a manifest.
    Snapshot publish(std::vector<SnapshotEntry> entries, double completedAt) const;
    Snapshot snapshotOf(std::vector<SnapshotEntry> entries, double completedAt = 1000) const;

  private:
    ScratchFolder scratch_;
    fs::path destination_;
    BackupRepository repository_;
};

/// A file whose object is in the store.
SnapshotEntry stored(const TestRepository& repository, std::string_view path, std::string_view content);

void writeFile(const fs::path& path, std::string_view bytes);
mode_t modeOf(const fs::path& path);
/// Every item below a folder with its bytes, a link with what it says, so that two looks can be compared.
std::map<std::string, std::string> contentsOf(const fs::path& folder);

extern const std::string linkRefusal;
extern const std::string busyRefusal;
extern const std::string identityRefusal;

} // namespace marrowbox::test
