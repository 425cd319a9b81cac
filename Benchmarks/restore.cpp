// Restoring 2 GB in 20,000 files, against `cp -r` of the same tree, and against what other backup programs
// take to restore it. The source is warm for all, the target new.
#include "Measuring/Command.h"
#include "Measuring/Measure.h"
#include "Measuring/Peers.h"
#include "Measuring/ScratchRepository.h"
#include "Measuring/StoredFiles.h"

#include <array>
#include <unistd.h>

namespace {

using namespace marrowbox;

constexpr std::size_t fileCount = 20'000;
constexpr std::size_t fileSize = 100 << 10;
constexpr int rounds = 3;

/// One of those that bring the tree back, and what they took.
struct Contender {
    std::function<void()> restore;
    std::vector<double> seconds;
};

double timed(const Contender& contender, const fs::path& target) {
    ::sync();
    const double taken = bench::seconds(contender.restore);
    fs::remove_all(target);
    return taken;
}

int report(const std::string& name, double bar, const Contender& ours, const Contender& theirs) {
    std::vector<double> ratios;
    for (std::size_t round = 0; round < ours.seconds.size(); ++round)
        ratios.push_back(ours.seconds[round] / theirs.seconds[round]);
    const bench::Ratio ratio{bench::median(ours.seconds), bench::median(theirs.seconds),
                             bench::median(ratios)};
    return bench::reportAtMost(name, ratio.ratio, bar, bench::describe(ratio));
}

} // namespace

int main() {
    const bench::ScratchRepository scratch("restore");
    const Snapshot snapshot = bench::storeFiles(scratch.repository(), fileCount, fileSize);
    const fs::path tree = scratch.folder() / "tree";
    const fs::path target = scratch.folder() / "target";
    scratch.repository().restore(snapshot, tree, {});
    const bench::Restic restic(scratch.folder() / "restic");
    restic.run("backup .", tree);
    const bench::Borg borg(scratch.folder() / "borg");
    borg.run("create ::tree .", tree);

    const std::string copy = "cp -r " + bench::quoted(tree) + " " + bench::quoted(target);
    Contender ours{[&] { scratch.repository().restore(snapshot, target, {}); }, {}};
    Contender copying{[&] { bench::runCommand(copy); }, {}};
    Contender resticRestore{[&] { restic.run("restore latest --target " + bench::quoted(target), tree); },
                            {}};
    Contender borgExtract{[&] {
                              fs::create_directory(target);
                              borg.run("extract ::tree", target);
                          },
                          {}};
    for (int round = 0; round < rounds; ++round)
        for (Contender* contender : std::array{&copying, &ours, &resticRestore, &borgExtract})
            contender->seconds.push_back(timed(*contender, target));
    return report("restore", 1.6, ours, copying) | report("restore-restic", 1, ours, resticRestore) |
           report("restore-borg", 1, ours, borgExtract);
}
