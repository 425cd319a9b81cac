#include "ScriptedState.h"

namespace marrowbox::test {

AppState& scripted(AppStore& store) {
    return const_cast<AppState&>(store.state());
}

Snapshot snapshotAt(const SyncUnit& unit, Date completedAt) {
    Snapshot snapshot;
    snapshot.id = Uuid::random();
    snapshot.unitID = unit.id;
    snapshot.startedAt = completedAt - 60;
    snapshot.completedAt = completedAt;
    return snapshot;
}

SnapshotList snapshotsOf(const SyncUnit& unit, std::size_t count, Date newest) {
    constexpr double hour = 3600;
    auto snapshots = std::make_shared<std::vector<Snapshot>>();
    for (std::size_t i = 0; i < count; ++i) {
        Snapshot snapshot = snapshotAt(unit, newest - static_cast<double>(i) * hour);
        snapshot.summary = {.added = static_cast<std::int64_t>(i % 7), .unchanged = 1200};
        snapshots->push_back(std::move(snapshot));
    }
    return snapshots;
}

RunRecord runOf(const SyncUnit& unit, RunOutcome outcome, Date startedAt) {
    RunRecord run = beginRunRecord(unit, "anna@example.org", false, startedAt);
    run.outcome = outcome;
    if (outcome != RunOutcome::running)
        run.endedAt = startedAt + 60;
    return run;
}

void addRun(AppStore& store, RunRecord run) {
    scripted(store).configuration.change(
        [&](AppConfiguration& current) { current.runs.insert(current.runs.begin(), std::move(run)); });
}

} // namespace marrowbox::test
