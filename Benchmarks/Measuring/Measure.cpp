#include "Measuring/Measure.h"

#include <algorithm>
#include <cstdio>

namespace marrowbox::bench {

namespace {

int report(const std::string& name, double measured, double bar, bool isReached, const std::string& remark) {
    std::printf("%-24s %9.3f %9.3f  %-7s  %s\n", name.c_str(), measured, bar, isReached ? "reached" : "short",
                remark.c_str());
    return isReached ? 0 : 1;
}

} // namespace

double seconds(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

Ratio compare(int rounds, const std::function<void()>& ours, const std::function<void()>& theirs) {
    std::vector<double> ourSeconds;
    std::vector<double> theirSeconds;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        // The order changes from round to round, since the second of a pair finds warmer caches.
        if (round % 2 == 0) {
            ourSeconds.push_back(seconds(ours));
            theirSeconds.push_back(seconds(theirs));
        } else {
            theirSeconds.push_back(seconds(theirs));
            ourSeconds.push_back(seconds(ours));
        }
        ratios.push_back(ourSeconds.back() / theirSeconds.back());
    }
    return {median(ourSeconds), median(theirSeconds), median(ratios)};
}

int reportAtMost(const std::string& name, double measured, double bar, const std::string& remark) {
    return report(name, measured, bar, measured <= bar, remark);
}

int reportAtLeast(const std::string& name, double measured, double bar, const std::string& remark) {
    return report(name, measured, bar, measured >= bar, remark);
}

std::string describe(const Ratio& ratio) {
    char text[80];
    std::snprintf(text, sizeof text, "%.1f ms against %.1f ms", ratio.ours * 1000, ratio.theirs * 1000);
    return text;
}

} // namespace marrowbox::bench
