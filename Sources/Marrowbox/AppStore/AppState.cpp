#include "Marrowbox/AppStore/AppState.h"

#include <algorithm>

namespace marrowbox {

bool awaitsEmail(const RunRecord& run) {
    return run.notify && !run.emailSent && run.outcome != RunOutcome::running;
}

const SyncUnit* AppState::unit(const Uuid& id) const {
    const auto found = std::ranges::find(configuration->units, id, &SyncUnit::id);
    return found == configuration->units.end() ? nullptr : &*found;
}

const SyncUnit* AppState::selectedUnit() const {
    return *selectedUnitID ? unit(**selectedUnitID) : nullptr;
}

const GoogleAccount* AppState::account(std::string_view id) const {
    const auto found = std::ranges::find(configuration->accounts, id, &GoogleAccount::id);
    return found == configuration->accounts.end() ? nullptr : &*found;
}

AccentTheme AppState::accent() const {
    const SyncUnit* const selected = selectedUnit();
    return selected ? selected->accent() : AccentTheme::blue;
}

std::size_t AppState::pendingEmails() const {
    return static_cast<std::size_t>(std::ranges::count_if(configuration->runs, awaitsEmail));
}

} // namespace marrowbox
