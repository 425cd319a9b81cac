#include "Marrowbox/SetupViews/SetupScreens.h"

namespace marrowbox {

SetupScreens::SetupScreens(std::shared_ptr<AppStore> store, QObject* parent)
    : QObject(parent), store_(std::move(store)), welcome_(store_) {
    connect(store_.get(), &StoreChanges::changed, this, &SetupScreens::follow);
}

void SetupScreens::appear() {
    follow(StoreField::showNewUnit);
    follow(StoreField::showSettings);
}

void SetupScreens::follow(StoreField field) {
    const AppState& state = store_->state();
    if (field == StoreField::showNewUnit && *state.showNewUnit && !newUnit_) {
        newUnit_ = new NewUnitModel(store_, this);
        connect(newUnit_, &NewUnitModel::dismissed, this, [this] { newUnit_.clear(); });
        emit newUnitOpened(newUnit_);
    }
    if (field == StoreField::showSettings && *state.showSettings && !settings_) {
        settings_ = new SettingsModel(store_, this);
        connect(settings_, &SettingsModel::dismissed, this, [this] { settings_.clear(); });
        emit settingsOpened(settings_);
    }
}

void SetupScreens::editUnit(const QString& id) {
    const auto unitID = Uuid::parse(id.toStdString());
    const SyncUnit* const unit = unitID ? store_->state().unit(*unitID) : nullptr;
    if (unit)
        emit unitSettingsOpened(new UnitSettingsModel(store_, *unit, this));
}

void SetupScreens::release(QObject* model) {
    if (model)
        model->deleteLater();
}

} // namespace marrowbox
