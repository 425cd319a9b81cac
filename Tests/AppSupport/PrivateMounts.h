#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace marrowbox::test {

/// Gives this process a list of mounts of its own, so that it may mount what it likes and nobody else sees
/// it. False when this user or machine does not allow it.
bool enterPrivateMounts();

/// Runs a program to its end; false when it fails.
bool runProgram(const std::string& program, const std::vector<std::string>& arguments);

/// A file system in memory on a folder, until the object ends.
class MemoryVolume {
  public:
    explicit MemoryVolume(std::filesystem::path folder);
    MemoryVolume(const MemoryVolume&) = delete;
    MemoryVolume& operator=(const MemoryVolume&) = delete;
    ~MemoryVolume();

  private:
    std::filesystem::path folder_;
};

/// A disk image with a file system, as a volume.
class ImageVolume {
  public:
    /// Makes an empty image. Throws std::runtime_error when the machine cannot.
    explicit ImageVolume(std::filesystem::path image);
    ImageVolume(const ImageVolume&) = delete;
    ImageVolume& operator=(const ImageVolume&) = delete;
    ~ImageVolume();

    /// False when this machine does not mount images.
    bool mount(const std::filesystem::path& folder);
    void unmount();

  private:
    std::filesystem::path image_;
    std::filesystem::path folder_; ///< Empty while it is not mounted.
};

} // namespace marrowbox::test
