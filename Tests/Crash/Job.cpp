#include "Job.h"

#include "Credentials/AppCredentials.h"
#include "GeneratedBackup.h"
#include "Models/BackupError.h"
#include "Program/GeneratedSource.h"

#include <gtest/gtest.h>
#include <set>

namespace marrowbox::test {

namespace {

void makeNothing(const fs::path&) {
}

void makeHistory(const fs::path& destination) {
    repositoryOf(destination).initialize();
    backUp(destination, 1);
    backUp(destination, 2);
}

void saveCredentials(const fs::path& destination) {
    const AppCredentials credentials(destination / "Credentials");
    credentials.save("old", "google.anna");
    credentials.save("hers", "google.berta");
}

void expectWholeObjects(const fs::path& destination, const Snapshot& snapshot) {
    for (const auto& entry : snapshot.entries)
        if (entry->objectHash)
            EXPECT_TRUE(readFile(repositoryOf(destination).objectURL(*entry->objectHash)) ==
                        generatedFile(entry->source).content)
                << entry->source.path;
}

/// The repository can be made and used. What a stop left half made is refused from then on, since nobody can
/// tell it from a repository that lost a part.
void expectUsable(const fs::path& destination) {
    const std::set<std::string> refusals = {
        "The backup destination is unavailable or its identity changed. Reconnect the original disk or NAS "
        "share.",
        "The backup repository is incomplete. Restore its missing folders before continuing."};
    try {
        repositoryOf(destination).initialize();
    } catch (const BackupError& refusal) {
        EXPECT_TRUE(refusals.contains(refusal.what())) << refusal.what();
        EXPECT_THROW(repositoryOf(destination).validate(), BackupError);
        return;
    }
    backUp(destination, 1);
    expectWholeObjects(destination, repositoryOf(destination).snapshots().at(0));
}

void expectRepository(const fs::path& destination) {
    repositoryOf(destination).validate();
}

/// The latest snapshot is always there; an earlier one whole, or gone.
void expectLatest(const fs::path& destination) {
    const std::vector<Snapshot> snapshots = repositoryOf(destination).snapshots();
    ASSERT_FALSE(snapshots.empty());
    for (const auto& snapshot : snapshots)
        expectWholeObjects(destination, snapshot);
    backUp(destination, 2);
}

void expectPruned(const fs::path& destination) {
    EXPECT_EQ(repositoryOf(destination).snapshots().size(), 1U);
}

/// Both snapshots restore, whatever lies half restored elsewhere.
void expectRestorable(const fs::path& destination) {
    const std::vector<Snapshot> snapshots = repositoryOf(destination).snapshots();
    ASSERT_EQ(snapshots.size(), 2U);
    for (const auto& snapshot : snapshots) {
        const fs::path folder = destination / snapshot.id.text();
        repositoryOf(destination).restore(snapshot, folder, {});
        expectRestored(snapshot, folder);
    }
}

void expectRestoredLatest(const fs::path& destination) {
    expectRestored(repositoryOf(destination).snapshots().back(), destination / "Restored");
}

void expectCredentials(const fs::path& destination) {
    const AppCredentials credentials(destination / "Credentials");
    const auto anna = credentials.read("google.anna");
    EXPECT_TRUE(anna == "old" || anna == "new") << anna.value_or("nothing");
    EXPECT_EQ(credentials.read("google.berta"), "hers");
    credentials.save("newer", "google.anna");
    EXPECT_EQ(credentials.read("google.anna"), "newer");
}

void expectNewCredential(const fs::path& destination) {
    EXPECT_EQ(AppCredentials(destination / "Credentials").read("google.anna"), "new");
}

} // namespace

const std::vector<Job>& jobs() {
    static const std::vector<Job> all = {
        {"initialize", makeNothing, expectUsable, expectRepository, true},
        {"prune", makeHistory, expectLatest, expectPruned, true},
        {"restore", makeHistory, expectRestorable, expectRestoredLatest, true},
        {"credential", saveCredentials, expectCredentials, expectNewCredential, false},
    };
    return all;
}

} // namespace marrowbox::test
