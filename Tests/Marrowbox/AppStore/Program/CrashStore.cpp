/// The store as a program of its own, for tests that kill it or fail its calls: marrowbox-crash-store DATA
/// DISK. It starts on the data folder, with a clock that stands still, and does one after the other what
/// writes the configuration. It ends with 0 whatever the user was told.

#include "StoreWorld.h"

#include <iostream>

namespace {

using namespace marrowbox;

void changeUnits(test::StoreWorld& world, AppStore& store, const fs::path& disk) {
    SyncUnit unit = world.unit();
    unit.name = "Letters";
    store.updateUnit(unit);
    SyncUnit added = test::dailyUnit(world, "Photos");
    added.destinationPath = disk;
    try {
        world.finish(store.addUnit(added, disk));
    } catch (const std::exception& refusal) {
        std::cerr << refusal.what() << '\n';
    }
    store.run(world.unit(), 0);
    world.time.settle();
    store.removeUnit(added);
}

void changeTheRest(test::StoreWorld& world, AppStore& store) {
    try {
        store.saveEmail(test::mailToAnna());
    } catch (const std::exception& refusal) {
        std::cerr << refusal.what() << '\n';
    }
    store.retryEmails();
    world.time.settle();
    world.desktop.choose(world.bundledClient);
    store.importClient();
    world.time.settle();
    store.useBundledClient();
    world.time.advance(60);
}

} // namespace

int main(int count, char** words) {
    if (count != 3)
        return EXIT_FAILURE;
    test::StoreWorld world;
    world.environment = {{"MARROW_DATA_DIR", words[1]}};
    AppStore& store = world.start();
    if (!store.configurationIsReadable() || world.configuration().units.empty()) {
        std::cerr << world.error() << '\n';
        return EXIT_SUCCESS;
    }
    changeUnits(world, store, words[2]);
    changeTheRest(world, store);
    return EXIT_SUCCESS;
}
