#pragma once

#include "Marrowbox/AppStore/AppStore.h"
#include "Models/RunRecord.h"

#include <cstdint>
#include <vector>

namespace marrowbox::test {

/// The fields of a store for a test to set, so that a screen can be seen in any state whatever. Nothing that
/// is set reaches the disk.
AppState& scripted(AppStore& store);

/// A snapshot of the unit that was completed then, without entries.
Snapshot snapshotAt(const SyncUnit& unit, Date completedAt);

/// So many snapshots of the unit, an hour apart, newest first.
SnapshotList snapshotsOf(const SyncUnit& unit, std::size_t count, Date newest);

/// A run of the unit that ended like this.
RunRecord runOf(const SyncUnit& unit, RunOutcome outcome, Date startedAt);

/// Puts a run before all others.
void addRun(AppStore& store, RunRecord run);

} // namespace marrowbox::test
