#pragma once

#include "Repository/BackupSource.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace marrowbox::bench {

/// How many files a tree has, small ones and large ones.
struct TreeShape {
    std::size_t files = 2'000;
    std::size_t fileSize = 64 << 10;
    std::size_t largeFiles = 2;
    std::size_t largeSize = 32 << 20;

    double bytes() const;
    /// "2000 files of 64 KB and 2 of 32 MB, 189 MB in all"
    std::string words() const;
};

/// A tree of files on the disk which nothing compresses and of which no two are equal, and beside it the list
/// of their MD5 digests, which a drive service names of its own accord.
class LocalTree {
  public:
    LocalTree(fs::path folder, TreeShape shape);

    const fs::path& folder() const { return folder_; }
    /// Gives the small files other bytes, one in so many.
    void changeOneIn(std::size_t step);

  private:
    void write(std::size_t number);
    void writeDigests() const;

    fs::path folder_;
    TreeShape shape_;
    std::uint64_t writes_ = 0;
    std::map<std::string, std::string> digests_; // by path
};

/// Such a tree as a source. It walks the folders and asks for each file's status, as a program does that
/// backs up a disk; what it downloads is copied.
class LocalTreeSource final : public BackupSource {
  public:
    explicit LocalTreeSource(fs::path folder);

    asio::awaitable<std::vector<SourceEntry>> inventory(std::stop_token stop) override;
    asio::awaitable<void> download(std::vector<SourceEntry> entries, fs::path folder,
                                   std::stop_token stop) override;

  private:
    fs::path folder_;
    std::map<std::string, std::string> digests_; // by path
};

} // namespace marrowbox::bench
