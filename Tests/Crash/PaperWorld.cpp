#include "PaperWorld.h"

#include "Platform/Files.h"
#include "Program/PaperMachine.h"
#include "Support/Coroutine.h"

#include <algorithm>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

void plant(const fs::path& path) {
    fs::create_directories(path.parent_path());
    writeAll(openFile(path, O_WRONLY | O_CREAT), "Somebody's own.");
}

} // namespace

std::string treeContents(const fs::path& path) {
    if (!fs::is_directory(path))
        return path.string() + ": " + readFile(path) + "\n";
    std::string state = path.string() + "\n";
    for (const std::string& name : directoryNames(path))
        state += treeContents(path / name);
    return state;
}

PaperWorld::PaperWorld() {
    for (const fs::path& folder : {now_, data_, data_ / "MountedSnapshots", place.runtime})
        makeDirectory(folder, 0700);
    place.folder().ensureDirectories();
    // None of these stands in the registry.
    plant(workRoot() / "Notes.txt");
    plant(workRoot() / Uuid::random().text() / ".marrowbox-mount.json");
    fs::create_directory(workRoot() / Uuid::random().text());
    plant(data_ / "Configuration.json");
    foreignWork_ = directoryNames(workRoot());
    foreignBefore_ = foreignFiles();
}

void PaperWorld::restore() const {
    fs::remove_all(now_);
    fs::copy(before_, now_, fs::copy_options::recursive);
}

SnapshotMount::Mounted PaperWorld::mount(Uuid id) const {
    Snapshot snapshot = backup.snapshot;
    snapshot.id = id;
    const auto mounts = start();
    return await(mounts->mount(snapshot, backup.unit, backup.destination, {}));
}

std::vector<Attachment> PaperWorld::mountList() const {
    return PaperMachine(*place.mountList).mounts();
}

void PaperWorld::setMountList(const std::vector<Attachment>& mounts) const {
    PaperMachine(*place.mountList).setMounts(mounts);
}

bool PaperWorld::hasEntryOf(Uuid id) const {
    return std::ranges::count(entries(), id, &MountEntry::id) > 0;
}

void PaperWorld::expectWork(const std::set<fs::path>& workFolders) const {
    std::vector<std::string> names = foreignWork_;
    for (const fs::path& folder : workFolders)
        names.push_back(folder.filename());
    EXPECT_THAT(directoryNames(workRoot()), testing::UnorderedElementsAreArray(names));
    std::vector<fs::path> registered;
    for (const MountEntry& entry : entries())
        registered.push_back(entry.workingDirectory.path());
    EXPECT_THAT(registered, testing::UnorderedElementsAreArray(workFolders));
}

void PaperWorld::expectForeignFilesUntouched() const {
    EXPECT_EQ(foreignFiles(), foreignBefore_);
}

bool PaperWorld::counts(const FileCall& call) const {
    return call.isWithin(scratch_.path()) && call.path != *place.mountList;
}

std::string PaperWorld::foreignFiles() const {
    std::string state = treeContents(data_ / "Configuration.json");
    for (const std::string& name : foreignWork_)
        state += treeContents(workRoot() / name);
    return state;
}

} // namespace marrowbox::test
