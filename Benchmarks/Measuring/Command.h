#pragma once

#include <filesystem>
#include <string>

namespace marrowbox::bench {

/// A path as one word of a shell's command; the benchmarks' paths hold no quote.
std::string quoted(const std::filesystem::path& path);

/// Runs a command through the shell, with its output thrown away. Throws std::runtime_error when it fails.
void runCommand(const std::string& command);

} // namespace marrowbox::bench
