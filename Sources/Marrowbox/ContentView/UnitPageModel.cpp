#include "Marrowbox/ContentView/UnitPageModel.h"

#include <QRegularExpression>

namespace marrowbox {

namespace {

PageMoment momentOf(const AppSurroundings& surroundings) {
    return {surroundings.clock(), surroundings.formats(), surroundings.calendar()};
}

} // namespace

UnitPageModel::UnitPageModel(std::shared_ptr<AppStore> store, QObject* parent)
    : QObject(parent), store_(std::move(store)), runs_(store_), history_(store_, runs_),
      activity_(store_, runs_), bell_(store_->surroundings()), moment_(momentOf(store_->surroundings())) {
    connect(store_.get(), &StoreChanges::changed, this, &UnitPageModel::follow);
    connect(&bell_, &MinuteBell::rang, this, [this] {
        renewMoment();
        refresh();
    });
    refresh();
    setFollowsTime(true);
}

void UnitPageModel::follow(StoreField field) {
    switch (field) {
    case StoreField::selectedUnitID:
        return beginUnit();
    case StoreField::progress:
        emit progressChanged();
        return;
    case StoreField::activeUnitID:
        emit progressChanged();
        refresh();
        if (page_.isBusy) // it cannot be removed now, so nobody is to be asked
            setConfirmsRemove(false);
        return;
    case StoreField::configuration:
    case StoreField::snapshots:
    case StoreField::isReadingHistory:
    case StoreField::storageUsage:
    case StoreField::destinationIssue:
    case StoreField::isConnecting:
    case StoreField::isExploring:
    case StoreField::availableCredentials:
        return refresh();
    default:
        return;
    }
}

void UnitPageModel::beginUnit() {
    open({});
    renewMoment();
    refresh();
    emit unitChanged();
    emit progressChanged();
}

void UnitPageModel::renewMoment() {
    moment_ = momentOf(store_->surroundings());
}

void UnitPageModel::refresh() {
    const SyncUnit* const unit = store_->state().selectedUnit();
    moment_.now = store_->surroundings().clock();
    UnitPage page = unit ? unitPage(store_->state(), *unit, runs_.last(), moment_) : UnitPage();
    if (page == page_)
        return;
    page_ = std::move(page);
    emit pageChanged();
}

void UnitPageModel::setFollowsTime(bool follows) {
    if (follows == bell_.isOn())
        return;
    bell_.setOn(follows);
    if (!follows)
        return;
    renewMoment();
    refresh();
}

QString UnitPageModel::unitID() const {
    const SyncUnit* const unit = store_->state().selectedUnit();
    return unit ? QString::fromStdString(unit->id.text()) : QString();
}

QString UnitPageModel::progress() const {
    const SyncUnit* const unit = store_->state().selectedUnit();
    const bool isBusy = unit && *store_->state().activeUnitID == unit->id;
    return isBusy ? QString::fromStdString(*store_->state().progress) : QString();
}

int UnitPageModel::progressCount(int group) const {
    static const QRegularExpression counts(QStringLiteral("(\\d+)–\\d+ of (\\d+)"));
    const QRegularExpressionMatch match = counts.match(progress());
    if (!match.hasMatch())
        return 0;
    // The first of those that are coming has not come yet.
    return match.captured(group).toInt() - (group == 1 ? 1 : 0);
}

void UnitPageModel::open(Opened opened) {
    if (std::exchange(opened_, opened) != opened)
        emit openedChanged();
}

void UnitPageModel::setConfirmsRemove(bool shown) {
    open({.removeQuestion = shown, .activity = opened_.activity});
}

void UnitPageModel::setShowsActivity(bool shown) {
    open({.removeQuestion = opened_.removeQuestion, .activity = shown});
}

void UnitPageModel::reconnect() {
    const SyncUnit* const unit = store_->state().selectedUnit();
    if (!unit)
        return;
    const GoogleAccount* const account = store_->state().account(unit->accountID);
    store_->connect(false, account ? std::optional(*account) : std::nullopt);
}

void UnitPageModel::backUpNow() {
    if (const SyncUnit* const unit = store_->state().selectedUnit())
        store_->run(*unit, 0);
}

void UnitPageModel::cancelBackup() {
    if (page_.isBusy)
        store_->cancelBackup();
}

void UnitPageModel::explore() {
    const SnapshotList snapshots = *store_->state().snapshots;
    if (!snapshots->empty())
        store_->explore(snapshots->front());
}

void UnitPageModel::openOrigin() {
    if (!page_.originLink.isEmpty())
        store_->surroundings().desktop.openPage(page_.originLink.toStdString());
}

void UnitPageModel::openOptions() {
    if (hasUnit())
        emit optionsWanted(unitID());
}

void UnitPageModel::remove() {
    setConfirmsRemove(false);
    if (const SyncUnit* const unit = store_->state().selectedUnit())
        store_->removeUnit(SyncUnit(*unit));
}

} // namespace marrowbox
