#include "BackedUpUnit.h"

#include "Platform/Digest.h"
#include "Platform/RandomBytes.h"
#include "Repository/BackupRepository.h"
#include "Support/SnapshotBuilder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <set>

namespace marrowbox::test {

BackedUpUnit::BackedUpUnit(fs::path at, std::size_t largest) : destination(std::move(at)) {
    makeDirectory(destination, 0700);
    unit.id = Uuid::random();
    unit.name = "Papers & more";
    snapshot.id = Uuid::random();
    snapshot.unitID = unit.id;
    snapshot.completedAt = {817'000'000};
    const BackupRepository repository(destination, unit.id);
    repository.initialize();
    addFile("a large one.bin", *randomBytes(largest));
    addFile("an empty one", "");
    addFolder("an empty folder");
    addFolder("nested");
    addFolder("nested/deep");
    addFile("nested/deep/a \"quoted\"\nname, and a \\.txt", "awkward");
    addFile("nested/deep/" + std::string(250, 'n'), "a long name");
    addFile("nested/größe ☃.txt", "the same content");
    addFile("twin.txt", "the same content");
    repository.commit(snapshot);
}

void BackedUpUnit::addFolder(const std::string& path) {
    snapshot.entries.emplace_back(test::folder(path));
}

void BackedUpUnit::addFile(const std::string& path, const std::string& content) {
    const fs::path file = destination / "incoming";
    writeAll(openFile(file, O_WRONLY | O_CREAT | O_TRUNC, 0600), content);
    const SnapshotEntry described = test::file(path, content);
    snapshot.entries.emplace_back(
        BackupRepository(destination, unit.id).importFile(file, described.source, {}));
}

fs::path BackedUpUnit::objectOf(std::string_view path) const {
    for (const auto& entry : snapshot.entries)
        if (entry->source.path.view() == path)
            return BackupRepository(destination, unit.id).objectURL(*entry->objectHash);
    ADD_FAILURE() << "the snapshot has no " << path;
    return {};
}

void BackedUpUnit::expectWholeSnapshot(const fs::path& root) const {
    std::set<fs::path> expected;
    for (const auto& entry : snapshot.entries) {
        const fs::path path = root / entry->source.path.view();
        expected.insert(path);
        if (entry->source.isDirectory)
            EXPECT_TRUE(fs::is_directory(path)) << path;
        else
            EXPECT_EQ(hexadecimal(sha256(readFile(path))), entry->objectHash->text()) << path;
    }
    std::set<fs::path> found;
    for (const auto& item : fs::recursive_directory_iterator(root))
        found.insert(item.path());
    EXPECT_EQ(found, expected);
}

} // namespace marrowbox::test
