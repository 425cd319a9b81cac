#include "PowerCutScene.h"

#include "Credentials/AppCredentials.h"
#include "GeneratedBackup.h"
#include "Job.h"
#include "Program/MountedBackup.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

using History = std::vector<int>;

const Job& jobNamed(std::string_view name) {
    return *std::ranges::find(jobs(), name, &Job::name);
}

void makeHistory(const fs::path& destination, int generations) {
    repositoryOf(destination).initialize();
    for (int generation = 1; generation <= generations; ++generation)
        backUp(destination, generation);
}

std::function<void(const fs::path&)> history(int generations) {
    return [=](const fs::path& destination) { makeHistory(destination, generations); };
}

/// The history is one of these and is whole, and the next run adds to it. The last one is that of a job that
/// has ended.
void expectOneOf(const fs::path& destination, const std::vector<History>& allowed, bool hasEnded) {
    History found = restoredHistory(destination);
    if (hasEnded)
        EXPECT_EQ(found, allowed.back());
    else
        EXPECT_TRUE(std::ranges::find(allowed, found) != allowed.end()) << testing::PrintToString(found);
    const Snapshot next = backUp(destination, 2);
    EXPECT_EQ(generationOf(next), 2);
    found.push_back(2);
    EXPECT_EQ(historyOf(destination), found);
}

/// What holds of a scene's last job.
std::function<void(const fs::path&, int)> histories(std::vector<History> allowed, int steps = 1) {
    return [=](const fs::path& destination, int jobsEnded) {
        expectOneOf(destination, allowed, jobsEnded == steps);
    };
}

std::function<void(const fs::path&, int)> asJob(const std::string& name) {
    return [job = jobNamed(name)](const fs::path& destination, int jobsEnded) {
        if (jobsEnded == 1)
            job.expectDone(destination);
        job.expectUnharmed(destination);
    };
}

/// From an empty disk to a pruned history, with what has to be there after each job.
void expectLife(const fs::path& destination, int jobsEnded) {
    if (jobsEnded == 0)
        return jobNamed("initialize").expectUnharmed(destination);
    const std::vector<History> held = {{}, {1}, {1, 2}, {2}};
    const auto ended = static_cast<std::size_t>(jobsEnded);
    const auto under = std::min(ended, held.size() - 1);
    expectOneOf(destination, {held[under], held[ended - 1]}, jobsEnded == 4);
}

/// A reconciliation leaves no work folder but one without a marker, which it dares not touch and says so; and
/// none stands that no entry names, since nobody would ever delete it.
void expectMountsInOrder(const fs::path& destination, int jobsEnded) {
    const SnapshotMount::Reconciliation found = reconcileMounts(destination);
    EXPECT_TRUE(found.isAuthoritative) << found.issue.value_or("");
    EXPECT_TRUE(found.mounted.empty());
    const MountRegistryFolder folder = mountRegistry(destination);
    std::vector<fs::path> named;
    for (const MountEntry& entry : folder.load().entries)
        named.push_back(entry.workingDirectory.path());
    const std::vector<fs::path> left(fs::directory_iterator(folder.workRoot()), {});
    EXPECT_EQ(left, named);
    if (found.issue) {
        EXPECT_EQ(*found.issue, "Invalid snapshot mount registry entry was retained.");
        ASSERT_EQ(left.size(), 1U);
        EXPECT_FALSE(fs::exists(left[0] / MountRegistryFolder::markerName));
    } else {
        EXPECT_TRUE(left.empty());
        mountAndEject(destination);
    }
    if (jobsEnded == 1)
        EXPECT_FALSE(found.issue);
    EXPECT_EQ(restoredHistory(destination), History{1});
}

void expectFirstCredential(const fs::path& destination, int jobsEnded) {
    const AppCredentials credentials(destination / "Credentials");
    const auto found = credentials.read("google.anna");
    EXPECT_TRUE(found == "new" || (!found && jobsEnded == 0)) << found.value_or("nothing");
    credentials.save("newer", "google.anna");
    EXPECT_EQ(credentials.read("google.anna"), "newer");
}

/// When the run has given so many objects their names.
std::function<bool(const FileCall&)> placesObject(int number) {
    return [=, count = 0](const FileCall& call) mutable {
        const bool places =
            call.name.starts_with("rename") && call.target.string().find("/Objects/") != std::string::npos;
        return places && ++count == number;
    };
}

/// When the manifest has its name, and nothing makes the name last.
bool keepsManifests(const FileCall& call) {
    return call.name == "fsync" && call.path.filename() == "Snapshots";
}

} // namespace

const std::vector<PowerCutScene>& powerCutScenes() {
    static const std::vector<PowerCutScene> all = {
        {"initialize", jobNamed("initialize").prepare, {{"initialize"}}, asJob("initialize")},
        {"firstRun", history(0), {{"1"}}, histories({{}, {1}}), {0, 40}},
        {"incrementalRun", history(1), {{"2"}}, histories({{1}, {1, 2}}), {0, 40}},
        {"runAfterAKilledOne",
         history(1),
         {{"2", placesObject(9)}, {"2"}},
         histories({{1}, {1, 2}}, 2),
         {1, 20}},
        {"prune", history(2), {{"prune"}}, histories({{1, 2}, {2}})},
        {"pruneAfterAKilledRun",
         history(1),
         {{"2", keepsManifests}, {"prune"}},
         histories({{1}, {1, 2}, {2}}, 2),
         {1, 20}},
        {"wholeLife",
         jobNamed("initialize").prepare,
         {{"initialize"}, {"1"}, {"2"}, {"prune"}},
         expectLife,
         {0, 30}},
        {"credential", jobNamed("credential").prepare, {{"credential"}}, asJob("credential")},
        {"firstCredential", jobNamed("initialize").prepare, {{"credential"}}, expectFirstCredential},
        {"mount", history(1), {{"mount"}}, expectMountsInOrder, {0, 40}},
    };
    return all;
}

} // namespace marrowbox::test
