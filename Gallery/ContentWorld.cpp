#include "Gallery/ContentWorld.h"

namespace marrowbox::gallery {

namespace {

constexpr double day = 86'400;

SyncUnit unit(const test::StoreWorld& world, const std::string& name, DriveLocation source,
              AccentTheme theme) {
    SyncUnit made = test::dailyUnit(world, name);
    made.source = std::move(source);
    made.destinationPath = "/media/anna/Backups/" + name;
    made.theme = theme;
    return made;
}

RunRecord runOf(const Snapshot& snapshot, const SyncUnit& unit, std::size_t index) {
    RunRecord run = test::runOf(unit, RunOutcome::succeeded, snapshot.startedAt);
    run.snapshotID = snapshot.id;
    run.summary = snapshot.summary;
    run.notify = index % 5 != 4;
    run.emailSent = run.notify && index != 0 && index != 2;
    run.emailSentAt = snapshot.completedAt + 5;
    if (index == 2)
        run.emailError = "The sender is not allowed to send mail.";
    if (index == 3)
        run.missedRuns = 4;
    return run;
}

BackupStorageUsage usageOf(const std::vector<Snapshot>& snapshots) {
    BackupStorageUsage usage{.totalRetainedBytes = 128'412'000'000, .latestSnapshotBytes = 96'204'000'000};
    for (std::size_t i = 0; i < snapshots.size(); ++i) {
        const auto age = static_cast<std::int64_t>(i);
        const bool isBaseline = i + 1 == snapshots.size();
        const std::int64_t added = i % 4 == 1 ? 0 : 3'217'000 * (i % 4 + 1) * (i % 3 * 41 + 1);
        usage.bySnapshot[snapshots[i].id] = {.logicalBytes = 96'204'000'000 - age * 211'000'000,
                                             .incrementalBytes = isBaseline ? 94'100'000'000 : added,
                                             .isBaseline = isBaseline};
    }
    return usage;
}

} // namespace

ContentWorld::ContentWorld(QObject* parent) : QObject(parent) {
}

void ContentWorld::begin(const AppConfiguration& configuration) {
    for (const GoogleAccount& account : configuration.accounts)
        world_.addCredential(account);
    world_.write(configuration);
    world_.start();
    world_.time.advance(1);
    window_ = std::make_unique<MainWindowModel>(world_.store);
    state().destinationIssue.set(std::nullopt);
}

void ContentWorld::beginWithBackups() {
    using enum AccentTheme;
    begin({.accounts = {test::anna()},
           .units = {unit(world_, "Family pictures", {.id = "pictures", .name = "Pictures"}, blue),
                     unit(world_, "Everything in My Drive", {.id = "root", .name = "My Drive"}, sage),
                     unit(world_, "Design team",
                          {.id = "design", .name = "Design team", .sharedDriveID = "design"}, coral)},
           .email = test::mailToAnna()});
}

void ContentWorld::addHistory(std::size_t count) {
    const SyncUnit& selected = *state().selectedUnit();
    std::vector<Snapshot> snapshots;
    std::vector<RunRecord> runs;
    for (std::size_t i = 0; i < count; ++i) {
        const auto number = static_cast<std::int64_t>(i);
        Snapshot snapshot =
            test::snapshotAt(selected, world_.time.now() - 3'600 - static_cast<double>(i) * day);
        snapshot.summary = {
            .added = number * 7 % 23, .updated = number * 5 % 11, .unchanged = 48'211 - number};
        if (i + 1 == count)
            snapshot.summary = {.added = 48'019};
        runs.push_back(runOf(snapshot, selected, i));
        snapshots.push_back(std::move(snapshot));
    }
    state().storageUsage.set(usageOf(snapshots));
    state().snapshots.set(std::make_shared<const std::vector<Snapshot>>(std::move(snapshots)));
    state().configuration.change([&](AppConfiguration& current) { current.runs = std::move(runs); });
}

void ContentWorld::endLastRun(RunOutcome outcome, const std::string& detail) {
    state().configuration.change([&](AppConfiguration& current) {
        RunRecord run = test::runOf(current.units.front(), outcome, world_.time.now() - 600);
        run.detail = detail;
        current.runs.insert(current.runs.begin(), std::move(run));
    });
}

void ContentWorld::run(const std::string& progress) {
    state().activeUnitID.set(state().selectedUnit()->id);
    state().progress.set(progress);
}

void ContentWorld::mountNewest() {
    const Snapshot& newest = (*state().snapshots)->front();
    state().mounted.change([&](auto& mounted) {
        mounted[newest.id] = {.id = newest.id, .unitID = newest.unitID, .displayName = "Family pictures"};
    });
}

} // namespace marrowbox::gallery
