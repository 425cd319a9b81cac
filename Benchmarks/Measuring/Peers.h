#pragma once

#include <filesystem>
#include <string>

namespace marrowbox::bench {

/// A repository of restic's in a folder of its own, with its cache beside it.
class Restic {
  public:
    explicit Restic(const std::filesystem::path& folder);
    /// Runs one of its commands, in the given folder. Throws std::runtime_error when it fails.
    void run(const std::string& arguments, const std::filesystem::path& in) const;

  private:
    std::string settings_;
};

/// A repository of borg's in a folder of its own, without encryption.
class Borg {
  public:
    explicit Borg(const std::filesystem::path& folder);
    /// Runs one of its commands, in the given folder; "::name" is an archive of the repository. Throws
    /// std::runtime_error when it fails.
    void run(const std::string& arguments, const std::filesystem::path& in) const;

  private:
    std::string settings_;
};

} // namespace marrowbox::bench
