// snapshots() on 50 manifests of 20,000 entries each, mostly equal: its time against the bare parse of all
// the bytes, and its peak memory against that of one manifest's entries.
#include "Measuring/Manifests.h"
#include "Measuring/Measure.h"
#include "Measuring/Memory.h"
#include "Measuring/ScratchRepository.h"
#include "Models/JSONFile.h"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parse.hpp>
#include <cstdio>

namespace {

using namespace marrowbox;

/// Writes the history and gives the bytes of its manifests.
std::vector<std::string> publishHistory(const bench::ScratchRepository& scratch) {
    std::vector<std::string> texts;
    Snapshot snapshot = bench::manifest(20'000);
    snapshot.unitID = scratch.repository().unitID();
    for (unsigned generation = 0; generation < 50; ++generation) {
        scratch.publish(snapshot);
        scratch.placeObjects(snapshot);
        texts.push_back(readFile(scratch.repository().manifest(snapshot.id)));
        snapshot = bench::laterManifest(snapshot, generation);
    }
    return texts;
}

void parseBare(const std::vector<std::string>& texts) {
    for (const auto& text : texts) {
        boost::json::monotonic_resource memory;
        boost::json::parse(text, &memory);
    }
}

/// One measurement of memory, in a process of its own.
void measureMemory(const std::string& what, const fs::path& folder) {
    const BackupRepository repository = bench::repositoryIn(folder);
    if (what == "all")
        repository.snapshots();
    else if (what == "one")
        JSONFile::read<Snapshot>(fs::directory_iterator(repository.snapshotsFolder())->path());
    bench::printPeakMemory();
}

int reportMemory(const fs::path& folder) {
    const auto peakOf = [&](const char* what) { return bench::peakMemoryOfRunning({what, folder.string()}); };
    const double idle = peakOf("nothing");
    const double all = peakOf("all") - idle;
    const double one = peakOf("one") - idle;
    char remark[80];
    std::snprintf(remark, sizeof remark, "%.1f MB against %.1f MB", all / 1e6, one / 1e6);
    return bench::reportAtMost("snapshots-50-memory", all / one, 3, remark);
}

} // namespace

int main(int count, char** arguments) {
    if (count == 3) {
        measureMemory(arguments[1], arguments[2]);
        return 0;
    }
    const bench::ScratchRepository scratch("snapshots-50");
    const auto texts = publishHistory(scratch);
    const auto time = bench::compare(5, [&] { scratch.repository().snapshots(); }, [&] { parseBare(texts); });
    const int timeStatus = bench::reportAtMost("snapshots-50", time.ratio, 2.5, bench::describe(time));
    return reportMemory(scratch.folder()) | timeStatus;
}
