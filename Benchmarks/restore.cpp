// Restoring 2 GB in 20,000 files, against `cp -r` of the same tree. The source is warm for both, the target
// new.
#include "Measuring/Measure.h"
#include "Measuring/ScratchRepository.h"
#include "Platform/Digest.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace marrowbox;

constexpr std::size_t fileCount = 20'000;
constexpr std::size_t fileSize = 100 << 10;
constexpr int rounds = 3;

std::string contentOf(std::size_t number) {
    std::string bytes(fileSize, '\0');
    std::uint64_t state = number * 0x9E3779B97F4A7C15U + 1;
    for (std::size_t index = 0; index < bytes.size(); index += 8) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        std::memcpy(bytes.data() + index, &state, 8);
    }
    return bytes;
}

/// Puts the objects of one snapshot into the store.
Snapshot store(const BackupRepository& repository) {
    Snapshot snapshot;
    snapshot.unitID = repository.unitID();
    for (std::size_t number = 0; number < fileCount; ++number) {
        const std::string content = contentOf(number);
        SnapshotEntry entry;
        entry.source.path = "Folder " + std::to_string(number / 50) + "/" + std::to_string(number);
        entry.objectHash = ObjectHash::ofDigest(sha256(content));
        entry.storedSize = fileSize;
        const fs::path object = repository.objectPaths().object(*entry.objectHash);
        makeDirectories(object.parent_path());
        writeAll(openFile(object, O_WRONLY | O_CREAT), content);
        snapshot.entries.emplace_back(std::move(entry));
    }
    return snapshot;
}

void copyTree(const fs::path& source, const fs::path& target) {
    const std::string command = "cp -r '" + source.string() + "' '" + target.string() + "'";
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("The copy failed.");
}

} // namespace

int main() {
    const bench::ScratchRepository scratch("restore");
    const Snapshot snapshot = store(scratch.repository());
    const fs::path tree = scratch.folder() / "tree";
    const fs::path target = scratch.folder() / "target";
    scratch.repository().restore(snapshot, tree, {});
    const auto restoring = [&] { scratch.repository().restore(snapshot, target, {}); };
    const auto copying = [&] { copyTree(tree, target); };
    const auto timed = [&](const std::function<void()>& work) {
        ::sync();
        const double taken = bench::seconds(work);
        fs::remove_all(target);
        return taken;
    };
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        theirs.push_back(timed(copying));
        ours.push_back(timed(restoring));
        ratios.push_back(ours.back() / theirs.back());
    }
    const bench::Ratio ratio{bench::median(ours), bench::median(theirs), bench::median(ratios)};
    return bench::reportAtMost("restore", ratio.ratio, 1.6, bench::describe(ratio));
}
