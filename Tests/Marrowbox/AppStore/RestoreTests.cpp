#include "StoreWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::StoreWorld;
using testing::ElementsAre;
using testing::MatchesRegex;
using testing::SizeIs;

namespace {

AppStore& startWithSnapshot(StoreWorld& world) {
    AppStore& store = world.startWith(test::oneUnit(world));
    store.run(world.unit(), 0);
    world.time.advance(5);
    world.desktop.forget();
    fs::create_directory(world.home / "Target");
    return store;
}

const Snapshot& newest(const StoreWorld& world) {
    return (*world.state().snapshots)->front();
}

std::vector<std::string> namesIn(const fs::path& folder) {
    return directoryNames(folder);
}

} // namespace

TEST(Restores, goIntoAFolderOfTheirOwnEachTime) {
    StoreWorld world;
    AppStore& store = startWithSnapshot(world);
    for (int time = 0; time < 2; ++time) {
        world.desktop.choose(world.home / "Target");
        store.restore(newest(world));
        world.time.settle();
    }
    EXPECT_EQ(world.error(), "");
    const std::vector<std::string> names = namesIn(world.home / "Target");
    ASSERT_THAT(names, SizeIs(2));
    for (const std::string& name : names) {
        EXPECT_THAT(name, MatchesRegex("Marrowbox Restore [0-9A-F]{8}"));
        EXPECT_EQ(readFile(world.home / "Target" / name / "Letter.txt"), "Dear Anna");
    }
    EXPECT_EQ(world.desktop.count("openFolder"), 2U);
    EXPECT_FALSE(*world.state().isExploring);
}

TEST(Restores, askForTheFolderWithAPromiseToPreserveFiles) {
    StoreWorld world;
    AppStore& store = startWithSnapshot(world);
    store.restore(newest(world));
    store.restore(newest(world));
    world.time.settle();
    EXPECT_THAT(world.desktop.calls(),
                ElementsAre("chooseFolder Choose a folder. Marrowbox will restore into a new subfolder and "
                            "preserve existing files."));
    EXPECT_FALSE(*world.state().isExploring) << "the user may think it over";
    world.desktop.choose(std::nullopt);
    world.time.settle();
    EXPECT_THAT(namesIn(world.home / "Target"), SizeIs(0));
    EXPECT_EQ(world.error(), "");
}

TEST(Restores, thatFailSayWhy) {
    StoreWorld world;
    AppStore& store = startWithSnapshot(world);
    world.desktop.choose(world.home / "Target");
    const Snapshot snapshot = newest(world);
    fs::remove_all(world.disk);
    store.restore(snapshot);
    world.time.settle();
    EXPECT_NE(world.error(), "");
    EXPECT_FALSE(world.state().mountIssue->has_value());
    EXPECT_FALSE(*world.state().isExploring);
    EXPECT_EQ(world.desktop.count("openFolder"), 0U);
}

TEST(Restores, andMountsExcludeEachOther) {
    StoreWorld world;
    AppStore& store = startWithSnapshot(world);
    store.restore(newest(world));
    world.time.settle();
    const auto gate = world.machine->hold("hdiutil create", world.time.context().get_executor());
    store.explore(newest(world));
    world.time.settle();
    world.desktop.choose(world.home / "Target");
    world.time.settle();
    EXPECT_THAT(namesIn(world.home / "Target"), SizeIs(0)) << "a mount has begun meanwhile";
    store.explore(newest(world));
    world.time.settle();
    EXPECT_FALSE(world.state().mountIssue->has_value()) << "a second press does nothing and says nothing";
    gate->letGo();
    world.time.settle();
    EXPECT_THAT(*world.state().mounted, SizeIs(1));
}

TEST(Restores, ofNoSelectedUnitDoNothing) {
    StoreWorld world;
    AppStore& store = startWithSnapshot(world);
    const Snapshot snapshot = newest(world);
    store.select(std::nullopt);
    store.restore(snapshot);
    store.explore(snapshot);
    world.time.settle();
    EXPECT_EQ(world.desktop.count("chooseFolder"), 0U);
    EXPECT_FALSE(*world.state().isExploring);
}

} // namespace marrowbox
