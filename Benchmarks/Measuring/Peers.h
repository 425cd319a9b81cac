#pragma once

#include <filesystem>
#include <string>

namespace marrowbox::bench {

/// A repository of restic's in a folder of its own, with its cache beside it.
class Restic {
  public:
    explicit Restic(const std::filesystem::path& folder);
    /// One of its commands in the given folder, as text for a shell.
    std::string command(const std::string& arguments, const std::filesystem::path& in) const;
    /// Runs such a command. Throws std::runtime_error when it fails.
    void run(const std::string& arguments, const std::filesystem::path& in) const;

  private:
    std::string settings_;
};

/// A repository of borg's in a folder of its own, without encryption.
class Borg {
  public:
    explicit Borg(const std::filesystem::path& folder);
    /// One of its commands in the given folder, as text for a shell; "::name" is an archive of the
    /// repository.
    std::string command(const std::string& arguments, const std::filesystem::path& in) const;
    /// Runs such a command. Throws std::runtime_error when it fails.
    void run(const std::string& arguments, const std::filesystem::path& in) const;

  private:
    std::string settings_;
};

} // namespace marrowbox::bench
