#include "Repository/ManifestChecks.h"

#include "Models/BackupError.h"
#include "Platform/PlainFile.h"
#include "Platform/UnicodeText.h"
#include "Repository/WrittenManifest.h"

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

namespace marrowbox {

namespace {

/// When a manifest's run probably completed.
double guessedDate(const fs::path& file) noexcept {
    try {
        std::array<char, WrittenManifest::longestHead> head{};
        return WrittenManifest::dateIn({head.data(), readSome(openPlainFile(file), head)});
    } catch (const std::exception&) {
        return 0; // whoever reads it all will tell
    }
}

} // namespace

std::vector<fs::path> manifestFiles(const BackupRepository& repository) {
    std::vector<fs::path> files;
    for (const auto& name : directoryNames(repository.snapshotsFolder()))
        if (pathExtension(name) == "json")
            files.push_back(repository.snapshotsFolder() / name);
    return files;
}

std::vector<fs::path> manifestFilesByDate(const BackupRepository& repository) {
    const std::vector<fs::path> files = manifestFiles(repository);
    std::vector<std::pair<double, std::size_t>> dates;
    for (std::size_t index = 0; index < files.size(); ++index)
        dates.emplace_back(guessedDate(files[index]), index);
    std::ranges::sort(dates);
    std::vector<fs::path> ordered;
    for (const auto& [date, index] : dates)
        ordered.push_back(files[index]);
    return ordered;
}

void ManifestChecks::requireIdentity(const Snapshot& snapshot, const fs::path& file) const {
    if (snapshot.schemaVersion != 1 || snapshot.unitID != repository_.unitID() ||
        withoutPathExtension(file.filename().string()) != snapshot.id.text())
        throw BackupError("An unsupported or mismatched snapshot was found. No history will be removed.");
}

void ManifestChecks::requireReference(const SnapshotEntry& entry) {
    if (entry.source.isDirectory)
        return;
    if (!entry.objectHash)
        throw BackupError("A snapshot is missing a file reference.");
    requireValid(*entry.objectHash);
    links_.reject(*entry.objectHash);
}

} // namespace marrowbox
