#pragma once

#include "Measuring/ScratchRepository.h"
#include "Repository/BackupSource.h"

#include <cstddef>
#include <memory>

namespace marrowbox::bench {

/// The latest snapshot of so many files, published with all of its objects in place.
Snapshot publishManyFiles(const ScratchRepository& scratch, std::size_t fileCount);

/// Lists so many files, anew each time as a source does that asks a service, and counts its own seconds.
class ManyFilesSource final : public BackupSource {
  public:
    explicit ManyFilesSource(std::size_t fileCount) : fileCount_(fileCount) {}
    asio::awaitable<std::vector<SourceEntry>> inventory(std::stop_token stop) override;
    asio::awaitable<void> download(std::vector<SourceEntry> entries, fs::path folder,
                                   std::stop_token stop) override;
    double ownSeconds() const { return ownSeconds_; }

  private:
    std::size_t fileCount_;
    double ownSeconds_ = 0;
};

/// A whole run that finds nothing changed: its seconds without those of the source. The manifest that it
/// publishes is removed again.
double unchangedRunSeconds(const BackupRepository& repository, const fs::path& destination,
                           std::size_t fileCount);

} // namespace marrowbox::bench
