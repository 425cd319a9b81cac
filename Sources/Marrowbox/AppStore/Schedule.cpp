#include "Marrowbox/AppStore/AppStore.h"

namespace marrowbox {

namespace {

/// A start that is late by less than this many seconds was not missed.
constexpr double grace = 300;
constexpr std::int64_t mostMissedRuns = 1000;

} // namespace

void AppStore::tick() {
    if (!configurationIsReadable_)
        return;
    refreshCredentialAvailability();
    try {
        runDueUnit();
    } catch (const std::exception& failure) {
        report(failure); // the next tick tries again, and mail goes out meanwhile
    }
    spawn(passEmails({}));
}

void AppStore::runDueUnit() {
    const Date now = around_.clock();
    const SyncUnit* const due = *state_.activeUnitID ? nullptr : firstDueUnit(now);
    if (!due)
        return;
    const std::int64_t missed =
        due->schedule.missedOccurrences(*due->nextRun, now, grace, around_.calendar(), mostMissedRuns);
    run(*due, missed);
}

const SyncUnit* AppStore::firstDueUnit(Date now) const {
    const SyncUnit* first = nullptr;
    for (const SyncUnit& unit : state_.configuration->units) {
        const bool isDue = unit.schedule.frequency != ScheduleFrequency::manual && unit.nextRun &&
                           *unit.nextRun <= now && state_.availableCredentials->contains(unit.accountID);
        if (isDue && (!first || *unit.nextRun < *first->nextRun))
            first = &unit;
    }
    return first;
}

} // namespace marrowbox
