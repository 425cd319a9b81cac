#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/AppStore/OnExecutor.h"
#include "Models/BackupError.h"
#include "Platform/UnicodeText.h"
#include "Repository/BackupRepository.h"

#include <algorithm>

namespace marrowbox {

asio::awaitable<void> AppStore::addUnit(SyncUnit unit, fs::path destination) {
    if (!configurationIsReadable_)
        throw BackupError("Configuration is unavailable.");
    const auto self = shared_from_this();
    unit.destinationPath = validText(unit.destinationPath); // the bookmark leads there, whatever its bytes
    co_await onExecutor(around_.pool,
                        [repository = BackupRepository(destination, unit.id)] { repository.initialize(); });
    state_.configuration.change([&](AppConfiguration& current) { current.units.push_back(unit); });
    moveSelection(unit.id);
    persist();
    spawn(refreshAndBackUp(std::move(unit)));
}

asio::awaitable<void> AppStore::refreshAndBackUp(SyncUnit unit) {
    co_await refreshSnapshots();
    if (state_.unit(unit.id)) // removed meanwhile, it would be backed up where nobody looks
        run(unit, 0);
}

void AppStore::updateUnit(SyncUnit unit) {
    const SyncUnit* const stored = state_.unit(unit.id);
    if (!stored)
        return;
    if (unit.schedule != stored->schedule)
        unit.nextRun = unit.schedule.next(around_.clock(), around_.calendar());
    state_.configuration.change([&](AppConfiguration& current) {
        *std::ranges::find(current.units, unit.id, &SyncUnit::id) = std::move(unit);
    });
    persistOrReport();
}

void AppStore::removeUnit(const SyncUnit& unit) {
    const Uuid id = unit.id;
    if (*state_.activeUnitID == id)
        return;
    state_.configuration.change([&](AppConfiguration& current) {
        std::erase_if(current.units, [&](const SyncUnit& known) { return known.id == id; });
    });
    const auto& left = state_.configuration->units;
    moveSelection(left.empty() ? std::nullopt : std::optional(left.front().id));
    persistOrReport();
    reloadSnapshots();
}

} // namespace marrowbox
