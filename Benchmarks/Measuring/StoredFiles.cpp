#include "Measuring/StoredFiles.h"

#include "Platform/Digest.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>

namespace marrowbox::bench {

std::string contentOf(std::uint64_t seed, std::size_t size) {
    std::string bytes(size, '\0');
    std::uint64_t state = seed * 0x9E3779B97F4A7C15U + 1;
    for (std::size_t index = 0; index < bytes.size(); index += 8) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        std::memcpy(bytes.data() + index, &state, 8);
    }
    return bytes;
}

fs::path treePath(std::size_t number) {
    char text[40];
    std::snprintf(text, sizeof text, "Folder %05zu/File %07zu", number / 50, number);
    return text;
}

SnapshotEntry storeFile(const BackupRepository& repository, std::size_t number, const std::string& content) {
    SnapshotEntry entry;
    entry.source.id = std::to_string(number);
    entry.source.path = treePath(number).string();
    entry.source.mimeType = "application/octet-stream";
    entry.source.size = static_cast<std::int64_t>(content.size());
    entry.objectHash = ObjectHash::ofDigest(sha256(content));
    entry.storedSize = entry.source.size;
    const fs::path object = repository.objectPaths().object(*entry.objectHash);
    makeDirectories(object.parent_path());
    writeAll(openFile(object, O_WRONLY | O_CREAT), content);
    return entry;
}

Snapshot storeFiles(const BackupRepository& repository, std::size_t count, std::size_t size) {
    Snapshot snapshot;
    snapshot.id = Uuid::random();
    snapshot.unitID = repository.unitID();
    snapshot.completedAt = {796953661.75};
    for (std::size_t number = 0; number < count; ++number)
        snapshot.entries.emplace_back(storeFile(repository, number, contentOf(number, size)));
    return snapshot;
}

} // namespace marrowbox::bench
