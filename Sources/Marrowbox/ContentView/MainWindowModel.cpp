#include "Marrowbox/ContentView/MainWindowModel.h"

namespace marrowbox {

namespace {

QString orEmpty(const std::optional<std::string>& text) {
    return text ? QString::fromStdString(*text) : QString();
}

} // namespace

MainWindowModel::MainWindowModel(std::shared_ptr<AppStore> store, QObject* parent)
    : QObject(parent), store_(std::move(store)), units_(store_), unitPage_(store_) {
    connect(store_.get(), &StoreChanges::changed, this, &MainWindowModel::follow);
    refreshAccent();
}

void MainWindowModel::follow(StoreField field) {
    switch (field) {
    case StoreField::configuration:
    case StoreField::selectedUnitID:
        return refreshAccent();
    case StoreField::mountIssue:
        emit mountIssueChanged();
        return;
    case StoreField::errorMessage:
        emit errorMessageChanged();
        return;
    case StoreField::showSettings:
        emit showsSettingsChanged();
        return;
    case StoreField::showNewUnit:
        emit showsNewUnitChanged();
        return;
    default:
        return;
    }
}

void MainWindowModel::refreshAccent() {
    const QString accent = themeName(store_->state().accent());
    if (accent == accent_)
        return;
    accent_ = accent;
    emit accentChanged();
}

void MainWindowModel::setVisible(bool visible) {
    if (visible == isVisible_)
        return;
    isVisible_ = visible;
    unitPage_.setFollowsTime(visible);
    emit visibleChanged();
}

QString MainWindowModel::mountIssue() const {
    return orEmpty(*store_->state().mountIssue);
}

QString MainWindowModel::errorMessage() const {
    return orEmpty(*store_->state().errorMessage);
}

void MainWindowModel::setShowsSettings(bool shown) {
    if (shown != showsSettings())
        store_->showSettings(shown);
}

void MainWindowModel::setShowsNewUnit(bool shown) {
    if (shown != showsNewUnit())
        store_->showNewUnit(shown);
}

void MainWindowModel::retryMounts() {
    store_->scheduleMountReconcile();
}

void MainWindowModel::dismissError() {
    store_->dismissError();
}

} // namespace marrowbox
