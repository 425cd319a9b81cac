#include "Marrowbox/SetupViews/NewUnitModel.h"

#include "Marrowbox/Platform/ScreenWording.h"

namespace marrowbox {

NewUnitModel::NewUnitModel(std::shared_ptr<AppStore> store, QObject* parent)
    : QObject(parent), store_(std::move(store)), connection_(store_), browser_(store_),
      accountCount_(store_->state().configuration->accounts.size()) {
    connect(store_.get(), &StoreChanges::changed, this, &NewUnitModel::follow);
    connect(&browser_, &DriveBrowser::listing, this, [this] { fail({}); });
    connect(&browser_, &DriveBrowser::failed, this, &NewUnitModel::fail);
}

NewUnitModel::~NewUnitModel() {
    life_.request_stop();
}

QVariantList NewUnitModel::accounts() const {
    return accountChoices(store_->state());
}

QString NewUnitModel::accountID() const {
    return QString::fromStdString(browser_.accountID());
}

QString NewUnitModel::sourceName() const {
    return source_ ? QString::fromStdString(source_->name) : QString();
}

QString NewUnitModel::sourceKind() const {
    return source_ && source_->sharedDriveID ? tr("Shared drive source") : tr("Google Drive folder");
}

QString NewUnitModel::sourceSymbol() const {
    if (!source_)
        return {};
    return source_->sharedDriveID ? QStringLiteral("person.2.crop.square.stack.fill")
                                  : QStringLiteral("folder.fill");
}

QString NewUnitModel::destinationText() const {
    return destination_ ? QString::fromStdString(destination_->string())
                        : worded(tr("A folder on your Mac, disk, or NAS"));
}

QString NewUnitModel::destinationNote() {
    return worded(tr("Connect a NAS share in Finder before choosing it here."));
}

void NewUnitModel::setName(const QString& name) {
    if (name == name_)
        return;
    name_ = name;
    emit changed();
}

QString NewUnitModel::missing() const {
    if (browser_.accountID().empty())
        return tr("Choose a Google account first.");
    if (!source_)
        return tr("Choose your source first.");
    if (!destination_)
        return tr("Choose a destination first.");
    return name_.trimmed().isEmpty() ? tr("Give the backup a name first.") : QString();
}

QString NewUnitModel::creatingReason() {
    return tr("The backup is being created.");
}

void NewUnitModel::appear() {
    takeFirstAccount();
}

void NewUnitModel::takeFirstAccount() {
    const auto& accounts = store_->state().configuration->accounts;
    if (browser_.accountID().empty() && !accounts.empty())
        selectAccount(QString::fromStdString(accounts.front().id));
}

void NewUnitModel::selectAccount(const QString& id) {
    source_.reset();
    browser_.browse(id.toStdString());
    emit changed();
}

void NewUnitModel::useFolder() {
    const auto place = browser_.place();
    if (!place)
        return;
    source_ = place;
    if (name_.isEmpty())
        name_ = QString::fromStdString(place->name);
    emit changed();
}

void NewUnitModel::changeSource() {
    source_.reset();
    emit changed();
}

void NewUnitModel::fail(const QString& issue) {
    error_ = issue;
    emit changed();
}

void NewUnitModel::follow(StoreField field) {
    if (field == StoreField::showNewUnit && !*store_->state().showNewUnit)
        return leave();
    if (field != StoreField::configuration && field != StoreField::availableCredentials)
        return;
    emit accountsChanged();
    const std::size_t count = store_->state().configuration->accounts.size();
    if (count == accountCount_)
        return;
    accountCount_ = count;
    takeFirstAccount();
}

void NewUnitModel::dismiss() {
    if (!isCreating_)
        store_->showNewUnit(false);
}

void NewUnitModel::leave() {
    life_.request_stop();
    browser_.stop();
    disconnect(store_.get(), nullptr, this, nullptr);
    emit dismissed();
}

} // namespace marrowbox
