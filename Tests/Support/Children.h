#pragma once

#include "Platform/Descriptor.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace marrowbox::test {

/// True when this process has no child at all, ended ones that nobody reaped included; that of a sanitizer's
/// own apart.
bool hasNoChild();

/// How many descriptors this process has open.
std::size_t openDescriptorCount();

/// True when a thread of this process, or of one that descends from it, runs or waits for the disk: it goes
/// on by itself, whatever nobody does. A process that has ended is not at work.
bool isAtWork(pid_t process);

/// A named pipe: how a test and a child wait for each other without a clock.
class NamedPipe {
  public:
    explicit NamedPipe(std::filesystem::path path);

    const std::filesystem::path& path() const { return path_; }
    /// Waits for a writer, and reads all that it writes.
    std::string read() const;
    /// Waits for a reader, and writes.
    void write(std::string_view bytes) const;
    /// Opens both ends: a child that reads the pipe then never comes to its end.
    Descriptor hold() const;

  private:
    std::filesystem::path path_;
};

} // namespace marrowbox::test
