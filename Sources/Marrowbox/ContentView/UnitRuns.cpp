#include "Marrowbox/ContentView/UnitRuns.h"

namespace marrowbox {

namespace {

const RunRecord* found(const std::unordered_map<Uuid, const RunRecord*>& runs, const Uuid& id) {
    const auto run = runs.find(id);
    return run == runs.end() ? nullptr : run->second;
}

} // namespace

UnitRuns::UnitRuns(std::shared_ptr<AppStore> store, QObject* parent)
    : QObject(parent), store_(std::move(store)) {
    // Before the change, since the records move while it happens, and others hear of it in any order.
    connect(store_.get(), &StoreChanges::willChange, this, [this](StoreField field) {
        if (field == StoreField::configuration || field == StoreField::selectedUnitID)
            isStale_ = true;
    });
}

void UnitRuns::find() const {
    if (!isStale_)
        return;
    isStale_ = false;
    newestFirst_.clear();
    byID_.clear();
    bySnapshot_.clear();
    const SyncUnit* const unit = store_->state().selectedUnit();
    if (!unit)
        return;
    for (const RunRecord& run : store_->state().configuration->runs) {
        if (run.unitID != unit->id)
            continue;
        newestFirst_.push_back(&run);
        byID_.try_emplace(run.id, &run);
        if (run.snapshotID)
            bySnapshot_.try_emplace(*run.snapshotID, &run);
    }
}

const std::vector<const RunRecord*>& UnitRuns::newestFirst() const {
    find();
    return newestFirst_;
}

const RunRecord* UnitRuns::last() const {
    find();
    return newestFirst_.empty() ? nullptr : newestFirst_.front();
}

const RunRecord* UnitRuns::withID(const Uuid& id) const {
    find();
    return found(byID_, id);
}

const RunRecord* UnitRuns::ofSnapshot(const Uuid& id) const {
    find();
    return found(bySnapshot_, id);
}

} // namespace marrowbox
