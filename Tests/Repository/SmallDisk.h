#pragma once

#include "Support/ScratchFolder.h"

#include <filesystem>
#include <string>

namespace marrowbox::test {

/// A small file system of the test's own, mounted where nothing else of the machine is touched. It takes the
/// rights to mount; a machine that does not give them says why there is none.
class SmallDisk {
  public:
    explicit SmallDisk(std::size_t mebibytes);
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk();

    bool isMounted() const { return whyNot_.empty(); }
    const std::string& whyNot() const { return whyNot_; }
    std::filesystem::path path() const { return folder_ / "disk"; }

    /// The whole disk, on which no file may be open for writing.
    void makeReadOnly() const;
    /// One folder of the disk, at any time.
    void makeReadOnly(const std::filesystem::path& folder) const;
    void makeWritable(const std::filesystem::path& folder) const;
    /// Takes the disk away, as when it is unplugged: the path stays, empty.
    void takeAway();
    std::size_t freeBytes() const;

  private:
    ScratchFolder folder_;
    std::string whyNot_;
    bool isAway_ = false;
};

} // namespace marrowbox::test
