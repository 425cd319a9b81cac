#pragma once

#include <filesystem>
#include <string_view>

namespace marrowbox::test {

/// A folder of the test's own, mode 0700, removed with the object.
class ScratchFolder {
  public:
    /// In the folder for temporary files, or in this one.
    ScratchFolder();
    explicit ScratchFolder(const std::filesystem::path& parent);
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

} // namespace marrowbox::test
