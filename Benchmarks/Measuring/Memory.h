#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace marrowbox::bench {

/// The most memory that this process has held since it began, in bytes. What its parent held does not count.
double ownPeakMemory();

/// What this process holds in memory now, in bytes.
double ownMemory();

/// Begins to count the peak anew.
void forgetPeakMemory();

/// Runs this program again with the given arguments, and gives the peak memory that it prints. A fresh
/// process has no memory left over from making the data that it measures on.
double peakMemoryOfRunning(const std::vector<std::string>& arguments);

/// A folder whose files lie in memory, when the machine has so much of it to spare; otherwise the temporary
/// folder.
std::filesystem::path folderInMemory(std::uintmax_t bytes);

/// Prints this process's peak for the one that runs it.
void printPeakMemory();

} // namespace marrowbox::bench
