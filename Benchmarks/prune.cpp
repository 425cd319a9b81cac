// Pruning a history of 200 snapshots of 20,000 files of 64 KB to its last 20, against `restic forget --prune`
// of the same history. From one snapshot to the next, one file in a hundred has other content. Where there is
// room, all of it lies in memory: some virtual disks hand every freed piece back to their host one by one,
// and the time that they take for it has nothing to do with either program.
#include "Measuring/Measure.h"
#include "Measuring/Memory.h"
#include "Measuring/Peers.h"
#include "Measuring/ScratchRepository.h"
#include "Measuring/StoredFiles.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace marrowbox;

constexpr std::size_t fileCount = 20'000;
constexpr std::size_t fileSize = 64 << 10;
constexpr std::size_t snapshotCount = 200;
constexpr std::size_t keptCount = 20;
/// What both repositories and the tree take, and room for the programs.
constexpr std::uintmax_t neededBytes = std::uintmax_t(14) << 30;
constexpr double day = 86400;
const Date firstDay{796953661.75};

/// The history, made in both repositories from the same bytes.
class History {
  public:
    explicit History(const bench::ScratchRepository& scratch)
        : scratch_(scratch), restic_(scratch.folder() / "restic") {
        latest_.unitID = scratch.repository().unitID();
        latest_.entries.assign(fileCount, SnapshotEntry());
        for (std::size_t number = 0; number < fileCount; ++number)
            change(number, 0);
        publish(0);
        for (std::size_t generation = 1; generation < snapshotCount; ++generation) {
            for (std::size_t number = generation % 100; number < fileCount; number += 100)
                change(number, generation);
            publish(generation);
        }
        std::fprintf(stderr, "\r%60s\r", "");
    }

    const bench::Restic& restic() const { return restic_; }

  private:
    void change(std::size_t number, std::size_t generation) {
        const std::string content = bench::contentOf(generation * fileCount + number, fileSize);
        SnapshotEntry entry = bench::storeFile(scratch_.repository(), number, content);
        entry.source.version = std::to_string(generation);
        const fs::path path = tree_ / entry.source.path.view();
        makeDirectories(path.parent_path());
        writeAll(openFile(path, O_WRONLY | O_CREAT | O_TRUNC), content);
        latest_.entries[number] = std::move(entry);
    }

    void publish(std::size_t generation) {
        latest_.id = Uuid::random();
        latest_.completedAt = firstDay + static_cast<double>(generation) * day;
        scratch_.publish(latest_);
        restic_.run("backup .", tree_);
        std::fprintf(stderr, "\rMaking a history: snapshot %zu of %zu", generation + 1, snapshotCount);
    }

    const bench::ScratchRepository& scratch_;
    bench::Restic restic_;
    fs::path tree_ = scratch_.folder() / "tree";
    Snapshot latest_;
};

void requireKept(const BackupRepository& repository) {
    if (repository.snapshots().size() != keptCount)
        throw std::logic_error("The history is not as it should be after the pruning.");
}

} // namespace

int main() {
    const fs::path under = bench::folderInMemory(neededBytes);
    const bench::ScratchRepository scratch("prune", under);
    const History history(scratch);
    const Date cutoff = firstDay + static_cast<double>(snapshotCount - keptCount) * day;
    ::sync();
    const double ours = bench::seconds([&] { scratch.repository().prune(cutoff); });
    requireKept(scratch.repository());
    ::sync();
    const std::string forget = "forget --prune --keep-last " + std::to_string(keptCount);
    const double theirs = bench::seconds([&] { history.restic().run(forget, scratch.folder()); });
    const bench::Ratio ratio{ours, theirs, ours / theirs};
    return bench::reportAtMost("prune", ratio.ratio, 0.1, bench::describe(ratio) + ", in " + under.string());
}
