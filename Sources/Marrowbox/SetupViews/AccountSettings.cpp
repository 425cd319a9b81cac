#include "Marrowbox/SetupViews/AccountSettings.h"

#include "Marrowbox/SetupViews/AccountConnection.h"

#include <QVariantMap>

namespace marrowbox {

AccountSettings::AccountSettings(std::shared_ptr<AppStore> store, QObject* parent)
    : QObject(parent), store_(std::move(store)) {
    connect(store_.get(), &StoreChanges::changed, this, [this](StoreField field) {
        if (field == StoreField::configuration || field == StoreField::availableCredentials)
            emit changed();
    });
}

QVariantList AccountSettings::accounts() const {
    QVariantList rows;
    for (const GoogleAccount& account : store_->state().configuration->accounts)
        rows.append(QVariantMap{
            {"id", QString::fromStdString(account.id)},
            {"email", QString::fromStdString(account.email)},
            {"grant", account.canSendEmail ? tr("Drive backup · Gmail sending") : tr("Drive backup")},
            {"issue", accountIssue(store_->state(), account)},
            {"canSendEmail", account.canSendEmail}});
    return rows;
}

void AccountSettings::connectKnown(const QString& id, bool email) {
    if (const GoogleAccount* const account = store_->state().account(id.toStdString()))
        store_->connect(email, *account);
}

void AccountSettings::reconnect(const QString& id) {
    connectKnown(id, false);
}

void AccountSettings::enableSending(const QString& id) {
    connectKnown(id, true);
}

void AccountSettings::disconnectAccount(const QString& id) {
    const GoogleAccount* const account = store_->state().account(id.toStdString());
    if (!account)
        return;
    const GoogleAccount leaving = *account;
    store_->removeAccount(leaving);
}

} // namespace marrowbox
