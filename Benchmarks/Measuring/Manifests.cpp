#include "Measuring/Manifests.h"

#include "Platform/Digest.h"

#include <algorithm>
#include <cstdio>

namespace marrowbox::bench {

namespace {

std::string numbered(const char* format, std::size_t number) {
    char text[80];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

} // namespace

SnapshotEntry manifestFile(std::size_t number) {
    const std::string digest = sha256(numbered("%zu", number));
    return {.source = {.id = "1" + hexadecimal(digest.substr(0, 16)),
                       .path = numbered("Projects/Folder %05zu/", number / 50) +
                               numbered("Document %07zu.pdf", number),
                       .version = numbered("%zu", 1000 + number % 977),
                       .mimeType = "application/pdf",
                       .size = static_cast<std::int64_t>(number % 1'000'003),
                       .md5 = SharedText(hexadecimal(digest.substr(16, 16)))},
            .objectHash = ObjectHash::ofDigest(digest),
            .storedSize = static_cast<std::int64_t>(number % 1'000'003)};
}

Snapshot manifest(std::size_t fileCount) {
    Snapshot snapshot;
    snapshot.id = Uuid::random();
    snapshot.unitID = *Uuid::parse("FEDCBA98-7654-3210-FEDC-BA9876543210");
    snapshot.startedAt = {796953600.125};
    snapshot.completedAt = {796953661.75};
    snapshot.entries.reserve(fileCount);
    for (std::size_t number = 0; number < fileCount; ++number)
        snapshot.entries.emplace_back(manifestFile(number));
    snapshot.summary.added = static_cast<std::int64_t>(fileCount);
    return snapshot;
}

Snapshot laterManifest(const Snapshot& earlier, unsigned generation) {
    Snapshot later = earlier;
    later.id = Uuid::random();
    later.startedAt = earlier.startedAt + 86400;
    later.completedAt = earlier.completedAt + 86400;
    for (std::size_t index = generation % 100; index < later.entries.size(); index += 100) {
        SnapshotEntry changed = *later.entries[index];
        const std::string digest = sha256(changed.source.path.string() + std::to_string(generation));
        changed.source.version = std::to_string(5000 + generation);
        changed.source.md5 = SharedText(hexadecimal(digest.substr(16, 16)));
        changed.objectHash = ObjectHash::ofDigest(digest);
        later.entries[index] = Shared<SnapshotEntry>(std::move(changed));
    }
    return later;
}

} // namespace marrowbox::bench
