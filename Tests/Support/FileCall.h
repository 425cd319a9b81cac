#pragma once

#include <filesystem>
#include <linux/seccomp.h>
#include <optional>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace marrowbox::test {

/// A system call that changes files, as another program makes it.
struct FileCall {
    std::string_view name;        ///< The system's own, but "unlock" for letting go of a lock.
    std::filesystem::path path;   ///< What it changes; absolute, links not followed.
    std::filesystem::path target; ///< Where it moves or links that to; empty for every other call.
    bool wasHeld = false;         ///< It is asked about again, after it has waited.

    bool isWithin(const std::filesystem::path& folder) const;
};

/// The numbers of all calls that can change files. A few of them change nothing with some arguments.
std::vector<int> fileCallNumbers();

/// Reads a call from its registers, texts from the caller's memory. Absent when these arguments change no
/// file, such as an open for reading. The calling thread must be held in the call.
std::optional<FileCall> readFileCall(const seccomp_data& registers, pid_t thread);

} // namespace marrowbox::test
