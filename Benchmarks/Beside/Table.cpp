#include "Beside/Table.h"

#include "Measuring/Measure.h"

#include <algorithm>
#include <cstdio>

namespace marrowbox::bench {

void Table::add(const std::string& job, const std::string& program, Cost cost) {
    if (!costs_.contains(job))
        jobs_.push_back(job);
    costs_[job][program].push_back(cost);
}

void Table::print() const {
    printHeader("seconds");
    for (const auto& job : jobs_)
        printRow(job, &Cost::seconds, 1);
    std::printf("\n");
    printHeader("peak memory, MB");
    for (const auto& job : jobs_)
        printRow(job, &Cost::peakBytes, 1 << 20);
    std::fflush(stdout);
}

void Table::printHeader(const char* unit) const {
    std::printf("| %-18s | %9s |", unit, programs_.front().c_str());
    for (std::size_t index = 1; index < programs_.size(); ++index)
        std::printf(" %13s | %5s |", programs_[index].c_str(), "ratio");
    std::printf("\n|:---|---:|");
    for (std::size_t index = 1; index < programs_.size(); ++index)
        std::printf("---:|---:|");
    std::printf("\n");
}

void Table::printRow(const std::string& job, Measure measure, double unit) const {
    const auto ours = values(job, programs_.front(), measure);
    std::printf("| %-18s | %9.2f |", job.c_str(), median(ours) / unit);
    for (std::size_t index = 1; index < programs_.size(); ++index) {
        const auto theirs = values(job, programs_[index], measure);
        std::vector<double> ratios;
        for (std::size_t round = 0; round < ours.size(); ++round)
            ratios.push_back(ours[round] / theirs[round]);
        std::printf(" %13.2f | %5.2f |", median(theirs) / unit, median(ratios));
    }
    std::printf("\n");
}

std::vector<double> Table::values(const std::string& job, const std::string& program, Measure measure) const {
    std::vector<double> values;
    for (const Cost& cost : costs_.at(job).at(program))
        values.push_back(cost.*measure);
    return values;
}

} // namespace marrowbox::bench
