// Mounting, ejecting and reconciling are stopped before each of their calls that change the disk, and have
// each of them fail in every way that disks fail. Whatever was stopped, the next start deletes it, adopts it,
// or keeps it as it is for a person to look at, by nothing but what stands on the disk. The mounts stand in a
// file: what the tools do themselves is tested on the real ones.
#include "BareWorkFolders.h"
#include "Disturbance.h"
#include "Models/BackupError.h"
#include "PaperWorld.h"
#include "Reconciliations.h"
#include "Repository/BackupRepository.h"
#include "Support/Coroutine.h"
#include "Support/Spread.h"
#include "Support/Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <set>
#include <sys/wait.h>

namespace marrowbox::test {

namespace {

struct MountJob {
    std::string name;
    void (*prepare)(const PaperWorld& world);
    /// How many mounts there are when it has done its work.
    std::size_t mountedWhenDone;

    friend std::ostream& operator<<(std::ostream& stream, const MountJob& job) { return stream << job.name; }
};

void prepareNothing(const PaperWorld&) {
}

void prepareMounted(const PaperWorld& world) {
    world.mount(Uuid::random());
}

/// What a start may find: a mount, one that was half made, one that the user took away, and one whose work
/// folder is gone.
void prepareRemains(const PaperWorld& world) {
    world.mount(Uuid::random());
    const auto kept = world.mountList();
    const auto half = world.mount(Uuid::random());
    fs::remove(half.workingDirectory / "Snapshot.dmg");
    fs::remove(half.workingDirectory / "Files" / "twin.txt");
    world.mount(Uuid::random());
    fs::remove_all(world.mount(Uuid::random()).workingDirectory);
    world.setMountList(kept);
}

const std::vector<MountJob> mountJobs = {
    {"mount", prepareNothing, 1}, {"eject", prepareMounted, 0}, {"reconcile", prepareRemains, 1}};

struct MountEnd {
    int status = 0;
    int calls = 0;
    std::vector<int> callsWithBareWork; ///< Numbers of calls with a work folder that has no marker.
    std::string disturbed;
    std::set<fs::path> bare; ///< Work folders that were left without a marker.
    std::string words;

    bool isDone() const { return WIFEXITED(status) && WEXITSTATUS(status) == 0; }
};

} // namespace

class DisturbedMount : public testing::TestWithParam<std::tuple<MountJob, Disturbance>> {
  protected:
    void SetUp() override {
        if (const auto reason = reasonForNoWatching())
            GTEST_SKIP() << *reason;
        job().prepare(world);
        world.keep();
    }

    const MountJob& job() const { return std::get<0>(GetParam()); }
    const Disturbance& disturbance() const { return std::get<1>(GetParam()); }

    /// Does the job on what was prepared and disturbs the call of this number, or none.
    MountEnd work(int number) const {
        world.restore();
        MountEnd end;
        BareWorkFolders bare(world.workRoot());
        WatchedProgram program({MARROWBOX_CRASH_MOUNT, world.place.directory, world.place.runtime,
                                *world.place.mountList, job().name, world.backup.destination,
                                world.backup.unit.id.text()});
        end.status = program.run([&](const FileCall& call) {
            const bool counts = world.counts(call) && disturbance().suits(call);
            if (counts && ++end.calls == number) {
                end.disturbed = std::string(call.name) + " " + call.path.string();
                return disturbance().answer; // which makes, moves and removes nothing
            }
            if (counts && !bare.paths().empty())
                end.callsWithBareWork.push_back(end.calls);
            bare.note(call);
            return Answer::proceed();
        });
        end.bare = bare.paths();
        end.words = program.words();
        return end;
    }

    void expectHonestEnd(const MountEnd& end) const {
        if (WIFSIGNALED(end.status))
            return;
        EXPECT_TRUE(end.isDone() || (WEXITSTATUS(end.status) == refused && !disturbance().isBorne));
        EXPECT_EQ(end.words.empty(), end.isDone());
        if (!end.isDone())
            return;
        EXPECT_EQ(world.entries().size(), job().mountedWhenDone);
        EXPECT_EQ(world.mountList().size(), job().mountedWhenDone);
        EXPECT_TRUE(end.bare.empty());
    }

    /// The next start knows each mount that there is, keeps the work that has no marker, and forgets and
    /// deletes all else.
    std::vector<SnapshotMount::Mounted> expectHealed(const MountEnd& end) const {
        const auto found = await(world.start()->reconcile({}));
        EXPECT_TRUE(found.isAuthoritative);
        EXPECT_EQ(found.issue, end.bare.empty() ? std::nullopt : std::optional(invalidEntry));
        std::vector<fs::path> volumes;
        for (const auto& mounted : found.mounted)
            volumes.push_back(mounted.volume);
        std::vector<fs::path> listed;
        for (const Attachment& mount : world.mountList())
            listed.push_back(mount.mountPoint.value());
        EXPECT_THAT(volumes, testing::UnorderedElementsAreArray(listed));
        std::set<fs::path> work = end.bare;
        for (const auto& mounted : found.mounted)
            work.insert(mounted.workingDirectory);
        world.expectWork(work);
        return found.mounted;
    }

    /// Mounts are ejected and made as ever, while what is kept stands in the way of its own snapshot alone.
    void expectUsable(const MountEnd& end, const std::vector<SnapshotMount::Mounted>& mounted) const {
        for (const auto& mount : mounted)
            await(world.start()->unmount(mount, {}));
        world.expectWork(end.bare);
        const Uuid id = world.backup.snapshot.id;
        const bool isKept = world.hasEntryOf(id);
        if (isKept)
            EXPECT_EQ(thrown<BackupError>([&] { world.mount(id); }),
                      "This snapshot already has registered mount state. Reconcile or eject it before "
                      "mounting again.");
        expectMountAndEject(isKept ? Uuid::random() : id);
        world.expectWork(end.bare);
    }

    /// Once a person has taken away what was kept, the next start forgets it, and nothing at all is left.
    void expectClearedByHand(const MountEnd& end) const {
        for (const fs::path& folder : end.bare)
            fs::remove_all(folder);
        const SnapshotMount::Reconciliation nothing{.isAuthoritative = true};
        EXPECT_EQ(await(world.start()->reconcile({})), nothing);
        world.expectWork({});
        expectMountAndEject(world.backup.snapshot.id);
        world.expectWork({});
        EXPECT_THAT(directoryNames(world.place.runtime / "marrowbox"), testing::ElementsAre(".lock"));
        EXPECT_THAT(directoryNames(world.place.directory),
                    testing::UnorderedElementsAre("MountWork", "mounts.json", "mounts.lock"));
    }

    void expectMountAndEject(Uuid id) const {
        const auto mounted = world.mount(id);
        world.backup.expectWholeSnapshot(mounted.workingDirectory / "Files");
        await(world.start()->unmount(mounted, {}));
    }

    /// All that a start and its user do with what was left.
    void expectRecovered(const MountEnd& end) const {
        std::string kept;
        for (const fs::path& folder : end.bare)
            kept += treeContents(folder);
        expectUsable(end, expectHealed(end));
        std::string stillKept;
        for (const fs::path& folder : end.bare)
            stillKept += treeContents(folder);
        EXPECT_EQ(stillKept, kept);
        expectClearedByHand(end);
        world.expectForeignFilesUntouched();
        const BackupRepository repository(world.backup.destination, world.backup.unit.id);
        EXPECT_EQ(repository.snapshots().size(), 1U);
    }

    const PaperWorld world;
};

TEST_P(DisturbedMount, isHonestAboutItsEndAndLeavesWhatTheNextStartPutsRightOrKeeps) {
    const MountEnd undisturbed = work(0);
    ASSERT_GT(undisturbed.calls, 0);
    const bool dies = disturbance().name == "Kill";
    std::set<int> numbers(undisturbed.callsWithBareWork.begin(), undisturbed.callsWithBareWork.end());
    for (const int number : spread(undisturbed.calls, dies ? 80 : 14))
        numbers.insert(number);
    int tried = 0;
    int kept = 0;
    for (const int number : numbers) {
        const MountEnd end = work(number);
        SCOPED_TRACE("disturbed call " + std::to_string(number) + ": " + end.disturbed + ", status " +
                     std::to_string(end.status) + ", " + end.words);
        tried += end.disturbed.empty() ? 0 : 1;
        kept += end.bare.empty() ? 0 : 1;
        expectHonestEnd(end);
        expectRecovered(end);
        if (HasFailure())
            break;
    }
    if (dies)
        EXPECT_GT(kept, 0) << "no kill met a work folder without its marker";
    RecordProperty("tried", tried);
    std::cout << tried << " calls disturbed, of " << undisturbed.calls << "; " << kept
              << " left work that is kept\n";
}

INSTANTIATE_TEST_SUITE_P(, DisturbedMount,
                         testing::Combine(testing::ValuesIn(mountJobs), testing::ValuesIn(disturbances())),
                         [](const auto& info) {
                             return std::get<0>(info.param).name + std::get<1>(info.param).name;
                         });

} // namespace marrowbox::test
