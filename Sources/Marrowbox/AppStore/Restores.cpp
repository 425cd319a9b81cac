#include "Marrowbox/AppStore/AppStore.h"
#include "Platform/Cancellation.h"
#include "Platform/HeldFlag.h"

namespace marrowbox {

void AppStore::restore(const Snapshot& snapshot) {
    const SyncUnit* const unit = state_.selectedUnit();
    if (unit && !*state_.isExploring)
        spawn(chooseAndRestore(snapshot, *unit));
}

asio::awaitable<void> AppStore::chooseAndRestore(Snapshot snapshot, SyncUnit unit) {
    if (isChoosing_)
        co_return;
    std::optional<fs::path> folder;
    {
        const HeldFlag choosing(isChoosing_);
        folder = co_await around_.desktop.chooseFolder(
            "Choose a folder. Marrowbox will restore into a new subfolder and preserve existing files.");
    }
    // A mount may have begun while the user was choosing.
    if (!folder || *state_.isExploring)
        co_return;
    state_.isExploring.set(true);
    exploreTask_.emplace();
    try {
        co_await restoreInto(*folder, std::move(snapshot), std::move(unit), exploreTask_->get_token());
    } catch (const CancellationError&) { // the user who cancels needs no message
    } catch (const std::exception& failure) {
        report(failure);
    }
    exploreTask_.reset();
    state_.isExploring.set(false);
}

asio::awaitable<void> AppStore::restoreInto(fs::path folder, Snapshot snapshot, SyncUnit unit,
                                            std::stop_token stop) {
    const fs::path source = co_await destination(unit);
    const fs::path target = folder / ("Marrowbox Restore " + Uuid::random().text().substr(0, 8));
    co_await engine_.restore(std::move(snapshot), std::move(unit), source, target, std::move(stop));
    around_.desktop.openFolder(target);
}

} // namespace marrowbox
