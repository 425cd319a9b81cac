#include "Demo/Report.h"

#include <algorithm>
#include <iomanip>

namespace marrowbox::demo {

namespace {

constexpr int nameWidth = 40;
constexpr int figureWidth = 10;

void printHeadings(std::ostream& stream, const char* name, std::initializer_list<const char*> figures) {
    stream << std::left << std::setw(nameWidth) << name << std::right;
    for (const char* heading : figures)
        stream << std::setw(figureWidth) << heading;
    stream << "\n";
}

void printLine(std::ostream& stream, const std::string& name, std::initializer_list<std::int64_t> figures,
               std::chrono::duration<double> time) {
    stream << std::left << std::setw(nameWidth) << name << std::right;
    for (const std::int64_t figure : figures)
        stream << std::setw(figureWidth) << figure;
    stream << std::setw(figureWidth) << std::fixed << std::setprecision(1) << time.count();
}

} // namespace

RunLine runLine(std::string name, const Snapshot& snapshot, std::chrono::duration<double> time) {
    const auto files =
        std::ranges::count_if(snapshot.entries, [](const auto& entry) { return !entry->source.isDirectory; });
    return {std::move(name), files, snapshot.summary, time};
}

void printTable(std::ostream& stream, const std::vector<RunLine>& runs,
                const std::vector<ReadBackLine>& back) {
    printHeadings(stream, "Backup", {"files", "new", "updated", "reused", "bytes", "seconds"});
    for (const RunLine& line : runs) {
        const RunSummary& summary = line.summary;
        printLine(stream, line.name,
                  {line.files, summary.added, summary.updated, summary.unchanged, summary.downloadedBytes},
                  line.time);
        stream << "\n";
    }
    stream << "\n";
    printHeadings(stream, "Brought back", {"files", "folders", "bytes", "seconds"});
    for (const ReadBackLine& line : back) {
        if (line.compared) {
            printLine(stream, line.name, {line.compared->files, line.compared->folders, line.compared->bytes},
                      line.time);
            stream << "  as it was in Google Drive\n";
        } else {
            stream << std::left << std::setw(nameWidth) << line.name << "  not on this machine\n";
        }
    }
}

} // namespace marrowbox::demo
