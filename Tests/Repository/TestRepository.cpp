#include "TestRepository.h"

#include "Models/JSONFile.h"
#include "Platform/Digest.h"
#include "Support/SnapshotBuilder.h"

#include <fcntl.h>

namespace marrowbox::test {

const std::string linkRefusal = "A symbolic link cannot be used inside the backup repository.";
const std::string busyRefusal = "This backup is already in use. Wait for the other job to finish.";
const std::string identityRefusal =
    "The backup destination is unavailable or its identity changed. Reconnect the "
    "original disk or NAS share.";

TestRepository::TestRepository()
    : destination_(scratch_.path()),
      repository_(destination_, *Uuid::parse("FEDCBA98-7654-3210-FEDC-BA9876543210")) {
    repository_.initialize();
}

TestRepository::TestRepository(const fs::path& destination)
    : destination_(destination),
      repository_(destination_, *Uuid::parse("FEDCBA98-7654-3210-FEDC-BA9876543210")) {
    repository_.initialize();
}

ObjectHash TestRepository::store(std::string_view content) const {
    fs::create_directories(object(content).parent_path());
    writeFile(object(content), content);
    return ObjectHash::ofDigest(sha256(content));
}

fs::path TestRepository::object(std::string_view content) const {
    return repository_.objectPaths().object(ObjectHash::ofDigest(sha256(content)));
}

Snapshot TestRepository::snapshotOf(std::vector<SnapshotEntry> entries, double completedAt) const {
    Snapshot snapshot;
    snapshot.id = Uuid::random();
    snapshot.unitID = repository_.unitID();
    snapshot.completedAt = {completedAt};
    for (auto& entry : entries)
        snapshot.entries.emplace_back(std::move(entry));
    return snapshot;
}

Snapshot TestRepository::publish(std::vector<SnapshotEntry> entries, double completedAt) const {
    Snapshot snapshot = snapshotOf(std::move(entries), completedAt);
    JSONFile::write(snapshot, repository_.manifest(snapshot.id));
    return snapshot;
}

SnapshotEntry stored(const TestRepository& repository, std::string_view path, std::string_view content) {
    repository.store(content);
    return file(path, content);
}

void writeFile(const fs::path& path, std::string_view bytes) {
    writeAll(openFile(path, O_WRONLY | O_CREAT | O_TRUNC, 0644), bytes);
}

mode_t modeOf(const fs::path& path) {
    return linkStatus(path).value().st_mode & 07777;
}

std::map<std::string, std::string> contentsOf(const fs::path& folder) {
    std::map<std::string, std::string> contents;
    for (const auto& item : fs::recursive_directory_iterator(folder)) {
        std::string& content = contents[item.path().lexically_relative(folder).string()];
        if (item.is_symlink())
            content = "-> " + fs::read_symlink(item.path()).string();
        else if (item.is_regular_file())
            content = readFile(item.path());
    }
    return contents;
}

} // namespace marrowbox::test
