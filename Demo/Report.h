#pragma once

#include "Models/Snapshot.h"

#include <chrono>
#include <ostream>
#include <string>
#include <vector>

namespace marrowbox::demo {

/// What one backup did, as the closing table shows it.
struct RunLine {
    std::string name;
    std::int64_t files = 0;
    RunSummary summary;
    std::chrono::duration<double> time{};
};

RunLine runLine(std::string name, const Snapshot& snapshot, std::chrono::duration<double> time);

/// A row a run under headings.
void printTable(std::ostream& stream, const std::vector<RunLine>& lines);

} // namespace marrowbox::demo
