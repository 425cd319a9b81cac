#pragma once

#include <filesystem>
#include <string>

namespace marrowbox::bench {

/// A path as one word of a shell's command; the benchmarks' paths hold no quote.
std::string quoted(const std::filesystem::path& path);

/// Any text as one word of a shell's command.
std::string oneWord(const std::string& text);

/// Runs a command through the shell, with its output thrown away. Throws std::runtime_error when it fails.
void runCommand(const std::string& command);

/// The first line that a command writes. Throws std::runtime_error when it fails or writes nothing.
std::string firstLineOf(const std::string& command);

} // namespace marrowbox::bench
