#pragma once

#include "Demo/Comparison.h"
#include "Models/Snapshot.h"

#include <chrono>
#include <optional>
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

/// A snapshot that was brought back in some way and held against what Google Drive held when it was made.
struct ReadBackLine {
    std::string name;
    /// Absent when this machine cannot do it.
    std::optional<Compared> compared;
    std::chrono::duration<double> time{};
};

/// A row a run and a row a way back, under headings.
void printTable(std::ostream& stream, const std::vector<RunLine>& runs,
                const std::vector<ReadBackLine>& back);

} // namespace marrowbox::demo
