#include "ScriptedState.h"
#include "StoreWorld.h"

#include "Marrowbox/ContentView/UnitPageModel.h"

#include <QAbstractItemModelTester>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::addRun;
using test::runOf;
using test::scripted;
using test::snapshotsOf;
using test::StoreWorld;

namespace {

struct HistoryWorld : StoreWorld {
    HistoryWorld() {
        write(test::oneUnit(*this));
        start();
        model = std::make_unique<UnitPageModel>(store);
    }

    std::string say(int row, HistoryModel::Role role) const {
        return model->history()->index(row).data(role).toString().toStdString();
    }
    std::string say(int row, ActivityModel::Role role) const {
        return model->activity()->index(row).data(role).toString().toStdString();
    }
    void show(SnapshotList snapshots) { scripted(*store).snapshots.set(std::move(snapshots)); }

    std::unique_ptr<UnitPageModel> model;
};

SnapshotList without(const SnapshotList& snapshots, std::size_t first, std::size_t count) {
    std::vector<Snapshot> rest = *snapshots;
    const auto begin = rest.begin() + static_cast<std::ptrdiff_t>(first);
    rest.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
    return std::make_shared<const std::vector<Snapshot>>(std::move(rest));
}

} // namespace

TEST(History, tellsOfASnapshotWhatItBroughtAndWhenItWasMade) {
    HistoryWorld world;
    world.store->run(world.unit(), 0);
    world.time.settle();
    ASSERT_EQ(world.model->history()->count(), 1);
    EXPECT_EQ(world.say(0, HistoryModel::dateText), "Mar 2, 2026, 10:00\u00A0AM");
    EXPECT_EQ(world.say(0, HistoryModel::summary), "1 new · 0 updated · 0 unchanged");
    EXPECT_EQ(world.say(0, HistoryModel::dataSize), "9 bytes baseline");
    EXPECT_EQ(world.say(0, HistoryModel::fullSize), "9 bytes snapshot");
    EXPECT_EQ(world.say(0, HistoryModel::emailShortText), "No email");
    EXPECT_EQ(world.say(0, HistoryModel::emailTone), "off");
    EXPECT_EQ(world.say(0, HistoryModel::emailIcon), "envelope.slash");
    EXPECT_EQ(world.say(0, HistoryModel::spokenName),
              "Mar 2, 2026, 10:00\u00A0AM, 1 new · 0 updated · 0 unchanged, No email — summaries were off, "
              "9 bytes baseline, 9 bytes snapshot");
}

TEST(History, countsWhatALaterSnapshotAddedFromNothingUp) {
    HistoryWorld world;
    world.store->run(world.unit(), 0);
    world.time.settle();
    world.time.advance(60);
    world.store->run(world.unit(), 0);
    world.time.settle();
    ASSERT_EQ(world.model->history()->count(), 2);
    EXPECT_EQ(world.say(0, HistoryModel::dataSize), "+0 B data");
    EXPECT_EQ(world.say(1, HistoryModel::dataSize), "9 bytes baseline");
}

TEST(History, saysNothingOfAMailOrASizeThatNobodyKnows) {
    HistoryWorld world;
    world.show(snapshotsOf(world.unit(), 1, world.time.now()));
    EXPECT_EQ(world.say(0, HistoryModel::emailText), "");
    EXPECT_EQ(world.say(0, HistoryModel::emailIcon), "");
    EXPECT_EQ(world.say(0, HistoryModel::dataSize), "");
    EXPECT_EQ(world.say(0, HistoryModel::fullSize), "");
}

TEST(History, followsTheMailOfTheRunThatMadeASnapshot) {
    HistoryWorld world;
    const SnapshotList snapshots = snapshotsOf(world.unit(), 2, world.time.now());
    world.show(snapshots);
    RunRecord run = runOf(world.unit(), RunOutcome::succeeded, world.time.now());
    run.snapshotID = snapshots->at(1).id;
    run.notify = true;
    addRun(*world.store, run);
    EXPECT_EQ(world.say(1, HistoryModel::emailShortText), "Email queued");
    EXPECT_EQ(world.say(0, HistoryModel::emailShortText), "");
    scripted(*world.store).configuration.change([](AppConfiguration& current) {
        current.runs.front().emailError = "No network.";
    });
    EXPECT_EQ(world.say(1, HistoryModel::emailText), "Email summary failed: No network.");
    EXPECT_EQ(world.say(1, HistoryModel::emailTone), "problem");
    EXPECT_EQ(world.say(1, HistoryModel::emailIcon), "envelope.badge.exclamationmark");
}

TEST(History, keepsItsRowsWhenSnapshotsComeAndAreCleanedUp) {
    HistoryWorld world;
    HistoryModel& history = *world.model->history();
    const QAbstractItemModelTester tester(&history, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const SnapshotList all = snapshotsOf(world.unit(), 60, world.time.now());
    world.show(without(all, 0, 2));
    int resets = 0;
    QObject::connect(&history, &QAbstractItemModel::modelReset, [&] { ++resets; });
    const QPersistentModelIndex row(history.index(5));
    const QString date = row.data(HistoryModel::dateText).toString();
    world.show(without(all, 20, 25));
    EXPECT_EQ(history.count(), 35);
    EXPECT_EQ(row.row(), 7);
    EXPECT_EQ(row.data(HistoryModel::dateText).toString(), date);
    EXPECT_EQ(resets, 0);
    world.show(without(all, 0, 60));
    EXPECT_EQ(history.count(), 0);
}

TEST(History, neverShowsARowOfTheUnitBefore) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.push_back(test::dailyUnit(world, "Photos"));
    AppStore& store = world.startWith(configuration);
    store.run(world.unit(), 0);
    world.time.settle();
    UnitPageModel model(world.store);
    ASSERT_EQ(model.history()->count(), 1);
    store.select(world.unit(1).id);
    EXPECT_EQ(model.history()->count(), 0);
    EXPECT_EQ(model.page().totalSize, "");
    store.select(world.unit(0).id);
    world.time.settle();
    ASSERT_EQ(model.history()->count(), 1);
    store.removeUnit(world.unit(0));
    EXPECT_EQ(model.history()->count(), 0) << "also when the selection moves by itself";
}

TEST(History, mountsEjectsAndRestoresTheSnapshotOfARow) {
    HistoryWorld world;
    world.store->run(world.unit(), 0);
    world.time.settle();
    HistoryModel& history = *world.model->history();
    EXPECT_FALSE(history.index(0).data(HistoryModel::isMounted).toBool());
    const QString first = QString::fromStdString(world.say(0, HistoryModel::snapshotID));
    history.mount(first);
    EXPECT_TRUE(world.model->page().isExploring);
    world.time.advance(1);
    EXPECT_EQ(world.model->page().isExploring, false);
    ASSERT_TRUE(history.index(0).data(HistoryModel::isMounted).toBool())
        << world.state().mountIssue->value_or("");
    EXPECT_TRUE(QString::fromStdString(world.say(0, HistoryModel::spokenName)).endsWith(", Mounted"));
    history.eject(first);
    world.time.advance(2);
    EXPECT_FALSE(history.index(0).data(HistoryModel::isMounted).toBool());
    world.desktop.choose(world.home / "Chosen");
    fs::create_directory(world.home / "Chosen");
    history.restore(first);
    world.time.advance(1);
    EXPECT_EQ(world.error(), "");
    EXPECT_FALSE(fs::is_empty(world.home / "Chosen"));
    history.mount("12");
    history.eject(QString());
    history.restore(QString::fromStdString(Uuid::random().text()));
}

TEST(Activity, tellsOfEachRunOfTheUnitHowItEnded) {
    HistoryWorld world;
    const Date now = world.time.now();
    RunRecord good = runOf(world.unit(), RunOutcome::succeeded, now - 500);
    good.summary = {.added = 3, .updated = 1, .unchanged = 40};
    addRun(*world.store, good);
    RunRecord bad = runOf(world.unit(), RunOutcome::failed, now - 400);
    bad.detail = "The disk is full.";
    bad.missedRuns = 1;
    addRun(*world.store, bad);
    SyncUnit other = world.unit();
    other.id = Uuid::random();
    addRun(*world.store, runOf(other, RunOutcome::cancelled, now - 300));
    ASSERT_EQ(world.model->activity()->count(), 2);
    EXPECT_EQ(world.say(0, ActivityModel::outcome), "Failed");
    EXPECT_EQ(world.say(0, ActivityModel::text), "The disk is full.");
    EXPECT_EQ(world.say(0, ActivityModel::emailText), "No email — summaries were off");
    EXPECT_EQ(world.say(0, ActivityModel::catchUp),
              "Catch-up snapshot · 1 scheduled snapshot missed while this computer was asleep or offline");
    EXPECT_EQ(world.say(1, ActivityModel::outcome), "Succeeded");
    EXPECT_EQ(world.say(1, ActivityModel::text), "3 new · 1 updated · 40 unchanged");
    EXPECT_EQ(world.say(1, ActivityModel::catchUp), "");
    scripted(*world.store).configuration.change([](AppConfiguration& current) {
        current.runs[1].missedRuns = 4;
    });
    EXPECT_EQ(world.say(0, ActivityModel::catchUp),
              "Catch-up snapshot · 4 scheduled snapshots missed while this computer was asleep or offline");
}

TEST(Activity, keepsItsRowsWhenARunBegins) {
    HistoryWorld world;
    ActivityModel& activity = *world.model->activity();
    const QAbstractItemModelTester tester(&activity, QAbstractItemModelTester::FailureReportingMode::Fatal);
    addRun(*world.store, runOf(world.unit(), RunOutcome::failed, world.time.now()));
    const QPersistentModelIndex row(activity.index(0));
    world.store->run(world.unit(), 0);
    EXPECT_EQ(row.row(), 1);
    EXPECT_EQ(world.say(0, ActivityModel::outcome), "Running");
    world.time.settle();
    EXPECT_EQ(world.say(0, ActivityModel::outcome), "Succeeded");
}

} // namespace marrowbox
