#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/AppStore/DataFolder.h"
#include "Marrowbox/AppStore/Failure.h"
#include "Marrowbox/AppStore/OnExecutor.h"
#include "Models/JSONFile.h"
#include "Platform/AtomicLeftovers.h"

namespace marrowbox {

namespace {

constexpr std::chrono::duration<double> tickInterval{30};
constexpr std::chrono::duration<double> unmountSettlingTime{0.7};

} // namespace

void AppStore::bringUp() {
    try {
        load();
    } catch (const std::exception& failure) {
        configurationIsReadable_ = false;
        report(failure);
    }
    spawnWeakly(keepTime(weak_from_this(), around_.wait));
    observeDesktop();
    refreshCredentialAvailability();
    spawn(settle());
    scheduleMountReconcile();
}

void AppStore::load() {
    const std::vector<fs::path> holders = DataFolder::make(dataDirectory_);
    lifetimeLock_.emplace(dataDirectory_ / ".application.lock",
                          "This backup is already in use. Wait for the other job to finish.");
    const fs::path file = dataDirectory_ / "Configuration.json";
    DataFolder::refuseForeignFile(file);
    // A link whose disk is away is a configuration that cannot be read, and none to begin anew and write
    // over.
    if (linkStatus(file))
        state_.configuration.set(JSONFile::read<AppConfiguration>(file));
    requireKnownVersion(*state_.configuration);
    recoverInterruptedRuns();
    migrateSwitches();
    if (!state_.configuration->units.empty())
        state_.selectedUnitID.set(state_.configuration->units.front().id);
    loadClientAtStart();
    readLoginItemAtStart();
    removeAtomicLeftovers(file);
    persist();
    spawn(onExecutor(around_.pool, [holders] { DataFolder::makeNamesLast(holders); }));
}

void AppStore::recoverInterruptedRuns() {
    state_.configuration.change([now = around_.clock()](AppConfiguration& configuration) {
        for (RunRecord& run : configuration.runs) {
            if (run.outcome != RunOutcome::running)
                continue;
            run.outcome = RunOutcome::interrupted;
            run.endedAt = now;
            run.detail = "The app stopped before this snapshot finished. Any previously completed snapshots "
                         "remain available.";
        }
    });
}

void AppStore::migrateSwitches() {
    state_.configuration.change([](AppConfiguration& configuration) {
        for (SyncUnit& unit : configuration.units) {
            if (unit.isEnabled == false) {
                unit.schedule.frequency = ScheduleFrequency::manual;
                unit.nextRun.reset();
            }
            unit.isEnabled.reset();
        }
    });
}

void AppStore::readLoginItem() {
    const LoginItemStatus status = around_.desktop.loginItemStatus();
    state_.startAtLogin.set(status == LoginItemStatus::enabled);
    state_.loginRequiresApproval.set(status == LoginItemStatus::requiresApproval);
}

void AppStore::readLoginItemAtStart() {
    try {
        readLoginItem();
    } catch (const std::exception&) {
        // Whether the program starts at login is no reason to make no backups.
    }
}

asio::awaitable<void> AppStore::settle() {
    co_await refreshSnapshots();
    tick();
}

asio::awaitable<void> AppStore::keepTime(std::weak_ptr<AppStore> store, Wait wait) {
    for (;;) {
        co_await wait(tickInterval, {});
        const auto living = store.lock();
        if (!living)
            co_return;
        living->tick();
    }
}

void AppStore::observeDesktop() {
    const auto tickAndReconcile = [weak = weak_from_this()] {
        const auto store = weak.lock();
        if (!store)
            return;
        store->tick();
        store->scheduleMountReconcile();
    };
    const auto volumeWentAway = [weak = weak_from_this()] {
        if (const auto store = weak.lock())
            store->spawnWeakly(reconcileTwice(weak, store->around_.wait));
    };
    around_.desktop.observe({.machineWoke = tickAndReconcile,
                             .volumeAppeared = tickAndReconcile,
                             .volumeWentAway = volumeWentAway});
}

asio::awaitable<void> AppStore::reconcileTwice(std::weak_ptr<AppStore> store, Wait wait) {
    if (const auto living = store.lock())
        living->scheduleMountReconcile();
    co_await wait(unmountSettlingTime, {});
    if (const auto living = store.lock())
        living->scheduleMountReconcile();
}

} // namespace marrowbox
