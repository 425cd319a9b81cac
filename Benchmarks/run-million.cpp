// The peak memory of a whole process that makes a run with nothing changed on 1,000,000 files.
#include "Measuring/Measure.h"
#include "Measuring/Memory.h"
#include "Measuring/UnchangedRun.h"

namespace {

using namespace marrowbox;

constexpr std::size_t fileCount = 1'000'000;
constexpr double mebibyte = 1 << 20;

} // namespace

int main(int count, char** arguments) {
    if (count == 2) {
        const fs::path folder = arguments[1];
        bench::unchangedRunSeconds(bench::repositoryIn(folder), folder, fileCount);
        bench::printPeakMemory();
        return 0;
    }
    const bench::ScratchRepository scratch("run-million");
    bench::publishManyFiles(scratch, fileCount);
    const double peak = bench::peakMemoryOfRunning({scratch.folder().string()});
    return bench::reportAtMost("run-million", peak / mebibyte, 600, "MiB at the peak");
}
