#include "Marrowbox/SetupViews/AccountConnection.h"

#include <QVariantMap>

namespace marrowbox {

AccountConnection::AccountConnection(std::shared_ptr<AppStore> store, QObject* parent)
    : QObject(parent), store_(std::move(store)) {
    connect(store_.get(), &StoreChanges::changed, this, [this](StoreField field) {
        if (field == StoreField::isConnecting)
            emit changed();
    });
}

QString AccountConnection::title() const {
    return titleOr(tr("Connect Google account"));
}

QString AccountConnection::titleOr(const QString& own) const {
    return isWaiting() ? tr("Waiting for Google…") : own;
}

QString AccountConnection::waitingReason() {
    return tr("Finish signing in with your browser.");
}

void AccountConnection::connectAccount() {
    store_->connect(false, std::nullopt);
}

void AccountConnection::cancel() {
    store_->cancelSignIn();
}

QVariantList accountChoices(const AppState& state) {
    QVariantList choices;
    for (const GoogleAccount& account : state.configuration->accounts)
        choices.append(QVariantMap{{"value", QString::fromStdString(account.id)},
                                   {"title", QString::fromStdString(account.email)},
                                   {"detail", accountIssue(state, account)}});
    return choices;
}

QString accountIssue(const AppState& state, const GoogleAccount& account) {
    if (state.availableCredentials->contains(account.id))
        return {};
    return AccountConnection::tr("Reconnect required");
}

} // namespace marrowbox
