#include "DisturbedRunTest.h"

#include "Program/GeneratedSource.h"

#include <gtest/gtest.h>
#include <set>

namespace marrowbox::test {

namespace {

/// What of a repository has reached stable storage, told from the calls of a run.
class StorageRecord {
  public:
    void note(const FileCall& call) {
        if (call.name == "fsync" || call.name == "fdatasync")
            synchronised_.insert(call.path);
        if (!call.name.starts_with("rename"))
            return;
        // A file that moves stays synchronised; a name that changes makes its folder stale.
        if (synchronised_.erase(call.path) != 0)
            synchronised_.insert(call.target);
        synchronised_.erase(call.target.parent_path());
    }
    bool holds(const fs::path& path) const { return synchronised_.contains(path); }

  private:
    std::set<fs::path> synchronised_;
};

bool publishes(const FileCall& call) {
    return call.target.extension() == ".json" && call.target.parent_path().filename() == "Snapshots";
}

std::set<fs::path> objectsOf(const Destination& destination) {
    std::set<fs::path> objects;
    for (const auto& entry : fs::recursive_directory_iterator(destination.repository().root() / "Objects"))
        if (entry.is_regular_file())
            objects.insert(entry.path());
    return objects;
}

/// Runs a backup and expects that, when its manifest appears, all objects that no earlier manifest names have
/// reached stable storage with their names; and that the manifest has when the run ends.
void expectDurableObjects(const Destination& destination, int generation, const std::set<fs::path>& durable) {
    StorageRecord storage;
    int published = 0;
    fs::path manifest;
    WatchedProgram program({MARROWBOX_CRASH_RUN, destination.path(), std::to_string(generation)});
    const int status = program.run([&](const FileCall& call) {
        if (!call.isWithin(destination.path()))
            return Answer::proceed();
        if (publishes(call)) {
            ++published;
            manifest = call.target;
            EXPECT_TRUE(storage.holds(call.path)) << "the bytes come before the name";
            for (const fs::path& object : objectsOf(destination)) {
                EXPECT_TRUE(durable.contains(object) || storage.holds(object)) << object;
                EXPECT_TRUE(durable.contains(object) || storage.holds(object.parent_path())) << object;
            }
        }
        storage.note(call);
        return Answer::proceed();
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(published, 1);
    EXPECT_TRUE(storage.holds(manifest));
}

} // namespace

class Durability : public DisturbedRunTest {};

TEST_P(Durability, ofEachObjectComesBeforeTheManifest) {
    const Destination destination(GetParam().generation - 1);
    expectDurableObjects(destination, GetParam().generation, objectsOf(destination));
}

TEST_P(Durability, isMadeUpForWhatADeadRunLeft) {
    const Destination destination(GetParam().generation - 1);
    const std::set<fs::path> durable = objectsOf(destination);
    // Some objects are in place, and their folders were not synchronised yet.
    const Condition placesAnObject = [&](const FileCall& call) {
        return call.isWithin(destination.repository().root() / "Objects") && call.name.starts_with("rename");
    };
    const DisturbedEnd end =
        runDisturbed(destination, GetParam().generation, 5, Answer::kill(), placesAnObject);
    ASSERT_TRUE(end.wasReached());
    ASSERT_GT(objectsOf(destination).size(), durable.size());
    expectDurableObjects(destination, GetParam().generation, durable);
}

INSTANTIATE_TEST_SUITE_P(, Durability, testing::Values(Scene{"firstRun", 1}, Scene{"incrementalRun", 2}),
                         sceneName);

} // namespace marrowbox::test
