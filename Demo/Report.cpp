#include "Demo/Report.h"

#include <algorithm>
#include <iomanip>

namespace marrowbox::demo {

namespace {

constexpr int nameWidth = 30;
constexpr int figureWidth = 12;

} // namespace

RunLine runLine(std::string name, const Snapshot& snapshot, std::chrono::duration<double> time) {
    const auto files =
        std::ranges::count_if(snapshot.entries, [](const auto& entry) { return !entry->source.isDirectory; });
    return {std::move(name), files, snapshot.summary, time};
}

void printTable(std::ostream& stream, const std::vector<RunLine>& lines) {
    stream << std::left << std::setw(nameWidth) << "Backup" << std::right;
    for (const char* heading : {"files", "new", "updated", "reused", "bytes", "seconds"})
        stream << std::setw(figureWidth) << heading;
    stream << "\n";
    for (const RunLine& line : lines) {
        stream << std::left << std::setw(nameWidth) << line.name << std::right;
        for (const std::int64_t figure : {line.files, line.summary.added, line.summary.updated,
                                          line.summary.unchanged, line.summary.downloadedBytes})
            stream << std::setw(figureWidth) << figure;
        stream << std::setw(figureWidth) << std::fixed << std::setprecision(1) << line.time.count() << "\n";
    }
}

} // namespace marrowbox::demo
