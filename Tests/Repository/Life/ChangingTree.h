#pragma once

#include "Repository/BackupSource.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace marrowbox::test {

/// A drive whose people work on between two backups: they change, rename, remove and add files, always as
/// many as they remove. Equal trees that were worked on equally often hold the same.
class ChangingTree final : public BackupSource {
  public:
    explicit ChangingTree(std::size_t fileCount);

    /// What happens from one backup to the next: two files have other content, one has another name, and one
    /// has gone while a new one came.
    void workOn();
    /// Folders and files, in no order.
    std::vector<SourceEntry> listing() const;
    /// The bytes of one of its files, as that entry describes it. Some of a file's contents come back later.
    static std::string contentOf(const SourceEntry& file);

    asio::awaitable<std::vector<SourceEntry>> inventory(std::stop_token stop) override;
    asio::awaitable<void> download(std::vector<SourceEntry> entries, fs::path folder,
                                   std::stop_token stop) override;

  private:
    std::string pathIn(std::size_t folder) const;
    SourceEntry newFile();
    void change(SourceEntry& file) const;

    std::vector<SourceEntry> folders_;
    std::vector<SourceEntry> files_;
    std::size_t fileNumber_ = 0; ///< Of the next file that comes.
    std::size_t step_ = 0;
};

} // namespace marrowbox::test
