#pragma once

#include "Beside/Watched.h"

#include <map>
#include <string>
#include <vector>

namespace marrowbox::bench {

/// What each program took for each job, round after round, and the table of it. Our program is the first
/// column; each other one has beside it our part of its cost.
class Table {
  public:
    explicit Table(std::vector<std::string> programs) : programs_(std::move(programs)) {}

    void add(const std::string& job, const std::string& program, Cost cost);
    /// Prints medians over the rounds: the seconds of all jobs, then their memory.
    void print() const;

  private:
    using Measure = double Cost::*;
    void printHeader(const char* unit) const;
    void printRow(const std::string& job, Measure measure, double unit) const;
    std::vector<double> values(const std::string& job, const std::string& program, Measure measure) const;

    std::vector<std::string> programs_;
    std::vector<std::string> jobs_; // in the order of their first cost
    std::map<std::string, std::map<std::string, std::vector<Cost>>> costs_;
};

} // namespace marrowbox::bench
