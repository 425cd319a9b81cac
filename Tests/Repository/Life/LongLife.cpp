#include "Life/LongLife.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/use_future.hpp>
#include <boost/unordered/unordered_flat_map.hpp>

namespace marrowbox::test {

namespace {

constexpr double secondsPerDay = 86400;
constexpr std::uintmax_t blockSize = 512; // the unit of st_blocks

asio::awaitable<void> ignoreProgress(std::string) {
    co_return;
}

/// The files of a tree, each once however deep it lies.
std::size_t fileCount(const fs::path& folder) {
    std::size_t count = 0;
    for (const auto& item : fs::recursive_directory_iterator(folder))
        count += item.is_regular_file() ? 1 : 0;
    return count;
}

bool liesBefore(const SourceEntry& left, const SourceEntry& right) {
    return left.path < right.path;
}

} // namespace

LongLife::LongLife(const fs::path& destination, const Terms& terms)
    : terms_(terms), destination_(destination), repository_(destination, Uuid::random()),
      tree_(std::make_shared<ChangingTree>(terms.files)),
      engine_(threads_.get_executor(), [this] { return now_; }) {
    repository_.initialize();
    unit_.id = repository_.unitID();
    unit_.retentionDays = static_cast<std::int64_t>(terms.retentionDays);
}

void LongLife::liveOneDay() {
    for (std::size_t run = 0; run < terms_.runsPerDay; ++run)
        runOnce();
}

void LongLife::runOnce() {
    if (runs_ > 0) {
        tree_->workOn();
        now_ = now_ + secondsPerDay / static_cast<double>(terms_.runsPerDay);
    }
    auto run = engine_.run(unit_, destination_, tree_, ignoreProgress, {});
    asio::co_spawn(threads_, std::move(run), asio::use_future).get();
    ++runs_;
    asio::co_spawn(threads_, engine_.prune(unit_, destination_), asio::use_future).get();
}

LongLife::Footprint LongLife::footprint() const {
    Footprint footprint;
    footprint.snapshots = directoryNames(repository_.snapshotsFolder()).size();
    footprint.objects = fileCount(repository_.objectPaths().objects);
    for (const auto& item : fs::recursive_directory_iterator(repository_.root())) {
        const auto status = linkStatus(item.path());
        if (item.is_regular_file())
            footprint.bytes += static_cast<std::uintmax_t>(status->st_size);
        footprint.disk += static_cast<std::uintmax_t>(status->st_blocks) * blockSize;
    }
    // Less the one that reads the folder.
    footprint.descriptors = directoryNames("/proc/self/fd").size() - 1;
    return footprint;
}

std::size_t LongLife::retainedSnapshots() const {
    return std::min(runs_, terms_.retentionDays * terms_.runsPerDay + 1);
}

std::string LongLife::fault(const fs::path& restored) {
    const std::vector<Snapshot> history = repository_.snapshots();
    if (history.size() != retainedSnapshots())
        return std::to_string(history.size()) + " snapshots are kept and not " +
               std::to_string(retainedSnapshots()) + ".";
    if (!fs::is_empty(repository_.root() / "Staging"))
        return "A run has left its work folder behind.";
    std::string found = faultOfListings(history);
    if (found.empty())
        found = faultOfObjects(history);
    if (found.empty())
        found = faultOfRestoring(history.front(), restored);
    return found;
}

std::string LongLife::faultOfListings(const std::vector<Snapshot>& history) const {
    ChangingTree then(terms_.files);
    for (std::size_t run = 0; run < runs_ - history.size(); ++run)
        then.workOn();
    for (const Snapshot& snapshot : history) {
        if (&snapshot != &history.front())
            then.workOn();
        std::vector<SourceEntry> listing = then.listing();
        std::ranges::sort(listing, liesBefore);
        const auto source = [](const auto& entry) -> const SourceEntry& { return entry->source; };
        if (!std::ranges::equal(snapshot.entries, listing, {}, source))
            return "A snapshot says something else than the tree held at its time.";
    }
    return {};
}

std::string LongLife::faultOfObjects(const std::vector<Snapshot>& history) const {
    boost::unordered_flat_map<ObjectHash, std::int64_t, std::hash<ObjectHash>> named;
    for (const Snapshot& snapshot : history)
        for (const auto& entry : snapshot.entries)
            if (entry->objectHash)
                named[*entry->objectHash] = entry->storedSize;
    for (const auto& [hash, size] : named) {
        const FileDigest digest = BackupRepository::digest(repository_.objectURL(hash), {});
        if (digest.sha256 != hash || digest.size != size)
            return "The bytes of a retained file are not those that it had.";
    }
    if (fileCount(repository_.objectPaths().objects) != named.size())
        return "Bytes are kept that no retained snapshot names.";
    return {};
}

std::string LongLife::faultOfRestoring(const Snapshot& snapshot, const fs::path& restored) {
    auto restoring = engine_.restore(snapshot, unit_, destination_, restored, {});
    asio::co_spawn(threads_, std::move(restoring), asio::use_future).get();
    std::size_t files = 0;
    for (const auto& entry : snapshot.entries) {
        const fs::path path = restored / entry->source.path.view();
        if (entry->source.isDirectory) {
            if (!fs::is_directory(path))
                return "A folder has not come back.";
            continue;
        }
        ++files;
        if (readFile(path) != ChangingTree::contentOf(entry->source))
            return "A file comes back with other bytes.";
    }
    return fileCount(restored) == files ? "" : "More files come back than there were.";
}

} // namespace marrowbox::test
