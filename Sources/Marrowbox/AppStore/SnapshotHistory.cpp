#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/AppStore/Failure.h"
#include "Marrowbox/AppStore/OnExecutor.h"
#include "Repository/BackupRepository.h"

#include <algorithm>

namespace marrowbox {

struct AppStore::History {
    SnapshotList snapshots = std::make_shared<const std::vector<Snapshot>>();
    BackupStorageUsage storageUsage;
};

/// Tells, while it lives, that the history is being read. The work that holds it keeps the store alive.
class AppStore::HistoryReading {
  public:
    explicit HistoryReading(AppStore& store) : store_(store) {
        ++store_.historyReaders_;
        tell();
    }
    HistoryReading(const HistoryReading&) = delete;
    HistoryReading& operator=(const HistoryReading&) = delete;
    ~HistoryReading() {
        --store_.historyReaders_;
        tell();
    }

  private:
    void tell() {
        const bool isReading = store_.historyReaders_ > 0;
        if (isReading != *store_.state_.isReadingHistory)
            store_.state_.isReadingHistory.set(isReading);
    }

    AppStore& store_;
};

AppStore::History AppStore::readHistory(const fs::path& destination, const Uuid& unitID) {
    std::vector<Snapshot> snapshots = BackupRepository(destination, unitID).snapshots();
    const BackupStorageUsage usage = BackupStorageUsage::measure(snapshots);
    std::ranges::reverse(snapshots);
    return {std::make_shared<const std::vector<Snapshot>>(std::move(snapshots)), usage};
}

void AppStore::publishHistory(History history, std::optional<std::string> issue) {
    SnapshotList old = *state_.snapshots;
    state_.snapshots.set(std::move(history.snapshots));
    letGoOn(around_.pool, std::move(old));
    state_.storageUsage.set(std::move(history.storageUsage));
    state_.destinationIssue.set(std::move(issue));
}

bool AppStore::moveSelection(std::optional<Uuid> unitID) {
    if (unitID == *state_.selectedUnitID)
        return false;
    state_.selectedUnitID.set(unitID);
    // Nobody may take the snapshots of one unit for those of another while these are being read.
    publishHistory({}, std::nullopt);
    return true;
}

void AppStore::select(std::optional<Uuid> unitID) {
    if (unitID == *state_.selectedUnitID)
        return;
    // Begun first, so that nobody takes the new unit's history for empty before it has been read.
    asio::awaitable<void> refreshing = refreshSnapshots();
    moveSelection(unitID);
    spawn(std::move(refreshing));
}

void AppStore::reloadSnapshots() {
    spawn(refreshSnapshots());
}

asio::awaitable<void> AppStore::refreshSnapshots() {
    return readSelectedHistory(std::make_unique<HistoryReading>(*this));
}

asio::awaitable<void> AppStore::readSelectedHistory(std::unique_ptr<HistoryReading>) {
    const SyncUnit* const selected = state_.selectedUnit();
    if (!selected) {
        publishHistory({}, std::nullopt);
        co_return;
    }
    const SyncUnit unit = *selected;
    const int refresh = ++refreshes_;
    History history;
    std::optional<std::string> issue;
    try {
        const fs::path folder = co_await destination(unit);
        history =
            co_await onExecutor(around_.pool, [folder, id = unit.id] { return readHistory(folder, id); });
    } catch (const std::exception& failure) {
        issue = words(failure);
    }
    // Whoever has moved on to another unit must not see these figures, and a later refresh knows better.
    if (*state_.selectedUnitID == unit.id && refresh == refreshes_)
        publishHistory(std::move(history), std::move(issue));
    else
        letGoOn(around_.pool, std::move(history));
}

} // namespace marrowbox
