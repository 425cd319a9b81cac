#include "Destination.h"
#include "Support/WatchedProgram.h"

#include <gtest/gtest.h>
#include <set>
#include <sys/wait.h>

namespace marrowbox::test {

namespace {

using Decide = std::function<Answer(const FileCall&)>;

bool removes(const FileCall& call, const fs::path& folder) {
    return call.name.starts_with("unlink") && call.isWithin(folder);
}

/// A history of two snapshots, of which pruning keeps the second, and an object that none of them names.
class KilledPrune : public testing::Test {
  protected:
    void SetUp() override {
        if (const auto reason = reasonForNoWatching())
            GTEST_SKIP() << *reason;
        const fs::path stray = before.repository().objectPaths().object(ObjectHash(std::string(64, 'a')));
        fs::create_directories(stray.parent_path());
        fs::copy_file("/bin/true", stray);
    }

    static int prune(const Destination& destination, const Decide& decide) {
        return WatchedProgram({MARROWBOX_CRASH_RUN, destination.path(), "prune"}).run(decide);
    }
    static fs::path snapshots(const Destination& destination) {
        return destination.repository().snapshotsFolder();
    }

    /// Prunes, and expects that each removal of an object comes after the folder of manifests was
    /// synchronised, and that only what the latest snapshot names is left.
    static void expectOrderedPrune(const Destination& destination) {
        bool isDurable = false;
        const int status = prune(destination, [&](const FileCall& call) {
            if (removes(call, snapshots(destination)))
                isDurable = false;
            if (call.name == "fsync" && call.path == snapshots(destination))
                isDurable = true;
            if (removes(call, destination.repository().objectPaths().objects))
                EXPECT_TRUE(isDurable) << call.path;
            return Answer::proceed();
        });
        EXPECT_EQ(status, 0);
        destination.expectHistory({2});
        destination.expectForeignFilesUntouched();
        EXPECT_EQ(countOfObjects(destination), namedObjects(destination));
    }

    const Destination before{2};

  private:
    static std::size_t countOfObjects(const Destination& destination) {
        std::size_t count = 0;
        for (const auto& item :
             fs::recursive_directory_iterator(destination.repository().objectPaths().objects))
            count += item.is_regular_file() ? 1 : 0;
        return count;
    }
    static std::size_t namedObjects(const Destination& destination) {
        std::set<std::string> names;
        const Snapshot latest = destination.repository().snapshots().at(0);
        for (const auto& entry : latest.entries)
            if (entry->objectHash)
                names.insert(std::string(entry->objectHash->text()));
        return names.size();
    }
};

} // namespace

TEST_F(KilledPrune, leavesAWholeHistoryWhereverItIsKilled) {
    int killed = 0;
    for (bool wasKilled = true; wasKilled && !HasFailure();) {
        const Destination destination(before);
        int calls = 0;
        const int status = prune(destination, [&](const FileCall& call) {
            return call.isWithin(destination.path()) && calls++ == killed ? Answer::kill()
                                                                          : Answer::proceed();
        });
        SCOPED_TRACE("killed before call " + std::to_string(killed));
        wasKilled = WIFSIGNALED(status);
        killed += wasKilled ? 1 : 0;
        if (destination.repository().snapshots().size() == 2)
            destination.expectHistory({1, 2});
        expectOrderedPrune(destination);
    }
    EXPECT_GT(killed, 16) << "a manifest, and an object of each file that changed";
}

TEST_F(KilledPrune, isMadeUpForBeforeAnObjectGoes) {
    // The manifest's removal did not reach stable storage.
    bool isRemoved = false;
    const int status = prune(before, [&](const FileCall& call) {
        isRemoved = isRemoved || removes(call, snapshots(before));
        const bool keeps = call.name == "fsync" && call.path == snapshots(before);
        return isRemoved && keeps ? Answer::kill() : Answer::proceed();
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    before.expectHistory({2});
    expectOrderedPrune(before);
}

} // namespace marrowbox::test
