#include "Marrowbox/ContentView/UnitListModel.h"

#include "Marrowbox/ContentView/UnitPage.h"

#include <algorithm>

namespace marrowbox {

UnitListModel::UnitListModel(std::shared_ptr<AppStore> store, QObject* parent)
    : IdentifiedRows(parent), store_(std::move(store)) {
    connect(store_.get(), &StoreChanges::changed, this, [this](StoreField field) {
        if (field == StoreField::configuration || field == StoreField::availableCredentials)
            refresh();
        else if (field == StoreField::selectedUnitID)
            followSelection();
    });
    refresh();
}

UnitListModel::Row UnitListModel::rowOf(const SyncUnit& unit) const {
    const bool canRun = store_->state().availableCredentials->contains(unit.accountID);
    return {.name = QString::fromStdString(unit.name),
            .icon = sourceIcon(unit.source),
            .theme = themeName(unit.accent()),
            .stopNote = canRun ? QString() : tr("Stopped · reconnect")};
}

void UnitListModel::refresh() {
    std::unordered_map<Uuid, Row> rows;
    std::vector<Uuid> ids;
    for (const SyncUnit& unit : store_->state().configuration->units) {
        ids.push_back(unit.id);
        rows.try_emplace(unit.id, rowOf(unit));
    }
    const bool differs = rows != rows_;
    rows_ = std::move(rows);
    setRows(std::move(ids));
    if (differs)
        announce();
    followSelection();
}

void UnitListModel::followSelection() {
    const AppState& state = store_->state();
    const SyncUnit* const unit = state.selectedUnit();
    const int row = unit ? static_cast<int>(unit - state.configuration->units.data()) : -1;
    if (std::exchange(selectedRow_, row) != row)
        emit selectedRowChanged();
}

QHash<int, QByteArray> UnitListModel::roleNames() const {
    return {{name, "name"}, {icon, "sourceIcon"}, {theme, "theme"}, {stopNote, "stopNote"}};
}

QVariant UnitListModel::data(const QModelIndex& index, int role) const {
    const Uuid* const id = idAt(index);
    const auto row = id ? rows_.find(*id) : rows_.end();
    if (row == rows_.end())
        return {};
    switch (role) {
    case name:
        return row->second.name;
    case icon:
        return row->second.icon;
    case theme:
        return row->second.theme;
    case stopNote:
        return row->second.stopNote;
    default:
        return {};
    }
}

void UnitListModel::select(int row) {
    if (const Uuid* const id = idAt(index(row)))
        store_->select(*id);
}

} // namespace marrowbox
