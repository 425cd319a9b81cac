// A run with nothing changed on 100,000 files, without the source's own time, against the bare parse of its
// manifest; and ten times the files, against the run itself.
#include "Measuring/Measure.h"
#include "Measuring/UnchangedRun.h"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parse.hpp>
#include <cstdio>

namespace {

using namespace marrowbox;

struct Measured {
    std::vector<double> runs;
    std::vector<double> parses;
};

Measured measure(std::size_t fileCount, int rounds) {
    const bench::ScratchRepository scratch("run-" + std::to_string(fileCount));
    const fs::path manifest = scratch.repository().manifest(bench::publishManyFiles(scratch, fileCount).id);
    const std::string text = readFile(manifest);
    Measured measured;
    for (int round = 0; round < rounds; ++round) {
        measured.runs.push_back(
            bench::unchangedRunSeconds(scratch.repository(), scratch.folder(), fileCount));
        measured.parses.push_back(bench::seconds([&] {
            boost::json::monotonic_resource memory;
            boost::json::parse(text, &memory);
        }));
    }
    return measured;
}

} // namespace

int main() {
    const Measured small = measure(100'000, 5);
    const Measured large = measure(1'000'000, 3);
    const double smallRun = bench::median(small.runs);
    const double parse = bench::median(small.parses);
    const double largeRun = bench::median(large.runs);
    char remark[80];
    std::snprintf(remark, sizeof remark, "%.1f ms against %.1f ms", smallRun * 1000, parse * 1000);
    const int runStatus = bench::reportAtMost("run-unchanged", smallRun / parse, 15, remark);
    std::snprintf(remark, sizeof remark, "%.1f ms against %.1f ms", largeRun * 1000, smallRun * 1000);
    return bench::reportAtMost("run-unchanged-growth", largeRun / smallRun, 11, remark) | runStatus;
}
