#pragma once

#include <string>
#include <vector>

namespace marrowbox::bench {

/// What a program took from its start to its end.
struct Cost {
    double seconds = 0;
    double peakBytes = 0; ///< The most memory that it, or any process that it waited for, has held.
};

/// Runs a shell's command with its output thrown away. A copy of this program that does nothing else starts
/// it, since a process counts as its own what the one that started it held at that moment. Throws
/// std::runtime_error when the command fails.
Cost costOf(const std::string& command);

/// The copy's part: runs the command, prints its cost, and gives the exit status.
int watch(const std::string& command);

/// The shell's command that runs this program with these arguments.
std::string ourselves(const std::vector<std::string>& arguments);

} // namespace marrowbox::bench
