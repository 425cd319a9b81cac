#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace marrowbox::bench {

/// Seconds that one call takes on the monotonic clock.
double seconds(const std::function<void()>& work);

double median(std::vector<double> values);

struct Ratio {
    double ours = 0;   ///< Median seconds.
    double theirs = 0; ///< Median seconds.
    double ratio = 0;  ///< Median of the rounds' ratios.
};

/// Runs the two side by side, in turn, so that a noisy machine disturbs both alike.
Ratio compare(int rounds, const std::function<void()>& ours, const std::function<void()>& theirs);

/// Prints the figure's line: name, measured, bar, reached or short, and a remark. Gives the exit status.
int reportAtMost(const std::string& name, double measured, double bar, const std::string& remark);
int reportAtLeast(const std::string& name, double measured, double bar, const std::string& remark);

/// "56 ms against 30 ms"
std::string describe(const Ratio& ratio);

} // namespace marrowbox::bench
