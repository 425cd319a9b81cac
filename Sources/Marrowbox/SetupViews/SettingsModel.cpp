#include "Marrowbox/SetupViews/SettingsModel.h"

namespace marrowbox {

SettingsModel::SettingsModel(std::shared_ptr<AppStore> store, QObject* parent)
    : QObject(parent), store_(std::move(store)), connection_(store_), general_(store_), accounts_(store_),
      email_(store_, connection_) {
    connect(store_.get(), &StoreChanges::changed, this, [this](StoreField field) {
        if (field == StoreField::settingsTab)
            emit tabChanged();
        if (field == StoreField::showSettings && !*store_->state().showSettings) {
            disconnect(store_.get(), nullptr, this, nullptr);
            emit dismissed();
        }
    });
}

QStringList SettingsModel::tabs() {
    return {tr("General"), tr("Accounts"), tr("Email")};
}

void SettingsModel::showTab(int tab) {
    store_->showSettingsTab(tab);
}

void SettingsModel::dismiss() {
    store_->showSettings(false);
}

} // namespace marrowbox
