// A backup that runs again and again for a long time, with its history pruned after each run, on a clock of
// its own: what it needs at the end beside what it needed when its retention had been reached. Its snapshots
// all have to be there then, with every byte.
//
// Without arguments, a year of 100 files and three days of 10,000 files, each backed up every ten minutes,
// of which a day is retained. `bench-long-life FILES DAYS RETENTION RUNS` measures any other life, RUNS being
// those of a day: 144 of them are ten minutes apart. Since each run reads and proves every retained list of
// all files, and its pruning does so again, the time goes with the product of FILES, RETENTION, DAYS and the
// square of RUNS: with two processors, a year of 10,000 files every ten minutes takes many hours.
#include "Life/LongLife.h"
#include "Measuring/Measure.h"
#include "Measuring/Memory.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <unistd.h>

namespace {

using namespace marrowbox;
using test::LongLife;

constexpr double mebibyte = 1 << 20;

/// Memory swings with the moment at which a thread's work ends; disk with how many of a day's changes fall on
/// large files. Whatever piles up with each run exceeds this in a year, and in three days of many files.
constexpr double memoryBar = 1.2;
constexpr double diskBar = 1.1;

struct Length {
    std::size_t files = 0;
    std::size_t days = 0;
    std::size_t retentionDays = 0;
    std::size_t runsPerDay = 144;
};

/// One day of a life.
struct Day {
    LongLife::Footprint footprint;
    double resident = 0; ///< Bytes in memory at its end.
    double peak = 0;     ///< The most that it took, in bytes.
    double run = 0;      ///< Seconds of a run with its pruning, on average.
};

/// A folder that is removed with the object.
struct WorkFolder {
    explicit WorkFolder(const Length& length)
        : path(bench::folderInMemory(length.files * std::uintmax_t(1) << 20) /
               ("marrowbox-bench-long-life-" + std::to_string(::getpid()))) {
        fs::create_directories(path / "Destination");
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    ~WorkFolder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }

    fs::path path;
};

Day liveOneDay(LongLife& life, std::size_t runsPerDay) {
    bench::forgetPeakMemory();
    const double seconds = bench::seconds([&] { life.liveOneDay(); });
    return {life.footprint(), bench::ownMemory(), bench::ownPeakMemory(),
            seconds / static_cast<double>(runsPerDay)};
}

void describe(const char* name, const Day& day) {
    std::printf(
        "  %-16s %8zu snapshots  %9.1f MiB on disk  %7.1f MiB resident  %7.1f MiB peak  %3zu descriptors"
        "  %7.1f ms a run\n",
        name, day.footprint.snapshots, static_cast<double>(day.footprint.disk) / mebibyte,
        day.resident / mebibyte, day.peak / mebibyte, day.footprint.descriptors, day.run * 1000);
}

int report(const Length& length, const Day& first, const Day& reached, const Day& end) {
    const std::string name = "long-life-" + std::to_string(length.files);
    const auto grown = [](auto now, auto before) {
        return static_cast<double>(now) / static_cast<double>(before);
    };
    const auto opened =
        static_cast<double>(end.footprint.descriptors) - static_cast<double>(first.footprint.descriptors);
    return bench::reportAtMost(name + "-memory", grown(end.peak, reached.peak), memoryBar, "a day's peak") |
           bench::reportAtMost(name + "-disk", grown(end.footprint.disk, reached.footprint.disk), diskBar,
                               "all of the repository") |
           bench::reportAtMost(name + "-open", opened, 0, "descriptors more than after a day");
}

int measure(const Length& length) {
    const WorkFolder work(length);
    LongLife life(work.path / "Destination", {length.files, length.runsPerDay, length.retentionDays});
    Day first;
    Day reached;
    Day latest;
    for (std::size_t day = 1; day <= length.days; ++day) {
        latest = liveOneDay(life, length.runsPerDay);
        if (day == 1)
            first = latest;
        if (day == length.retentionDays + 1)
            reached = latest;
        std::fprintf(stderr, "\rDay %zu of %zu", day, length.days);
    }
    std::fprintf(stderr, "\r%60s\r", "");
    const int status = report(length, first, reached, latest);
    std::printf("  %zu runs on %zu files in %zu days, %zu a day, %zu days retained, in %s\n", life.runs(),
                length.files, length.days, length.runsPerDay, length.retentionDays,
                work.path.parent_path().c_str());
    describe("first day", first);
    describe("retention reached", reached);
    describe("last day", latest);
    std::fflush(stdout);
    const std::string fault = life.fault(work.path / "Restored");
    if (!fault.empty())
        throw std::logic_error(fault);
    return status;
}

std::size_t number(const char* text) {
    return std::strtoul(text, nullptr, 10);
}

} // namespace

int main(int count, char** arguments) {
    if (count != 5)
        return measure({.files = 100, .days = 365, .retentionDays = 1}) |
               measure({.files = 10'000, .days = 3, .retentionDays = 1});
    const Length length{number(arguments[1]), number(arguments[2]), number(arguments[3]),
                        number(arguments[4])};
    if (length.files == 0 || length.retentionDays == 0 || length.runsPerDay == 0 ||
        length.days <= length.retentionDays + 1) {
        std::fputs("bench-long-life FILES DAYS RETENTION RUNS, of which DAYS is at least RETENTION and two\n",
                   stderr);
        return 2;
    }
    return measure(length);
}
