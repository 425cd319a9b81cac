#include "MountWorld.h"

#include "Platform/Files.h"

#include <fcntl.h>

namespace marrowbox::test {

namespace {

MountMachine machineOf(const std::shared_ptr<ScriptedMachine>& machine) {
    return {.system = machine, .images = std::make_shared<HdiutilTool>(machine), .localTime = [](Date) {
                return std::tm{.tm_min = 4, .tm_hour = 15, .tm_mday = 21, .tm_mon = 10};
            }};
}

} // namespace

MountWorld::MountWorld() : mounts(context.get_executor(), directory, machineOf(machine)) {
    folder.ensureDirectories();
    const auto lock = folder.lock(); // makes the lock file, so that a refusal has nothing to make
}

MountEntry MountWorld::newEntry() const {
    const fs::path workFolder = folder.workRoot() / Uuid::random().text();
    return {.id = Uuid::random(),
            .unitID = Uuid::random(),
            .displayName = "Marrowbox Papers 11-21 1504",
            .workingDirectory = FileURL::ofFolder(workFolder),
            .image = FileURL::ofFile(workFolder / "Snapshot.dmg")};
}

MountEntry MountWorld::prepareWork() {
    const MountEntry entry = newEntry();
    const fs::path workFolder = entry.workingDirectory.path();
    makeDirectory(workFolder, 0700);
    folder.writeMarker(entry);
    makeDirectory(workFolder / "Files", 0755);
    writeAll(openFile(workFolder / "Files" / "paper.txt", O_WRONLY | O_CREAT, 0600), "a paper");
    writeAll(openFile(workFolder / "Snapshot.dmg", O_WRONLY | O_CREAT, 0644), "an image");
    return entry;
}

MountEntry MountWorld::prepare() {
    const MountEntry entry = prepareWork();
    MountRegistry registry = folder.load();
    registry.entries.push_back(entry);
    folder.save(registry);
    return entry;
}

MountEntry MountWorld::prepareMounted(const fs::path& mountPoint) {
    const MountEntry entry = prepare();
    machine->attached.push_back({entry.image.path(), mountPoint});
    return entry;
}

SnapshotMount::Mounted MountWorld::mountedOf(const MountEntry& entry, const fs::path& mountPoint) const {
    return mountedFrom(entry, mountPoint);
}

void MountWorld::finish() {
    context.restart();
    context.run();
}

void MountWorld::runUntilReached(const Gate& gate) {
    context.restart();
    while (!gate.isReached && context.run_one() > 0) {
    }
    ASSERT_TRUE(gate.isReached);
}

void MountWorld::stopDuringCall(std::size_t number, std::stop_source stop) {
    machine->answer("", [this, stop, number](const ToolCommand& command) mutable {
        if (machine->calls.size() == number + 1)
            stop.request_stop();
        return machine->usual(command);
    });
}

SnapshotMount::Reconciliation MountWorld::unchangingReconcile() {
    const std::string before = treeState(scratch.path());
    auto reconciliation = run(mounts.reconcile({}));
    EXPECT_EQ(treeState(scratch.path()), before);
    return reconciliation;
}

void MountWorld::expectEveryOperationRefuses(const std::string& words) {
    const MountEntry entry = newEntry();
    EXPECT_EQ(refusedUnmount(entry), words);
    EXPECT_EQ(refusal<BackupError>([&] { run(mounts.mount({.id = entry.id}, {}, "/destination", {})); }),
              words);
    const auto reconciliation = unchangingReconcile();
    EXPECT_EQ(reconciliation.issue, "Snapshot mount recovery was skipped: " + words);
    EXPECT_FALSE(reconciliation.isAuthoritative);
    const std::string before = treeState(scratch.path());
    EXPECT_FALSE(run(mounts.validatedMounted(entry.id, {})));
    EXPECT_EQ(treeState(scratch.path()), before);
    EXPECT_TRUE(machine->calls.empty());
}

} // namespace marrowbox::test
