#include "Marrowbox/SetupViews/EmailDraft.h"

#include "Marrowbox/AppStore/Failure.h"
#include "Marrowbox/Platform/ScreenWording.h"
#include "Marrowbox/SetupViews/AccountConnection.h"

#include <QVariantMap>

namespace marrowbox {

namespace {

constexpr const char* gmail = "gmail";
constexpr const char* disabled = "disabled";

template <typename Value>
void takeUnlessEdited(Value& draft, const Value& before, const Value& now) {
    if (draft == before)
        draft = now;
}

} // namespace

EmailDraft::EmailDraft(std::shared_ptr<AppStore> store, const AccountConnection& connection, QObject* parent)
    : QObject(parent), store_(std::move(store)), connection_(connection),
      draft_(store_->state().configuration->email), stored_(draft_) {
    connect(store_.get(), &StoreChanges::changed, this, &EmailDraft::follow);
}

void EmailDraft::follow(StoreField field) {
    switch (field) {
    case StoreField::configuration:
        followStored();
        [[fallthrough]];
    case StoreField::availableCredentials:
        emit accountsChanged();
        [[fallthrough]];
    case StoreField::isConnecting:
        emit changed();
        break;
    default:
        break;
    }
}

void EmailDraft::followStored() {
    const EmailSettings& now = store_->state().configuration->email;
    takeUnlessEdited(draft_.provider, stored_.provider, now.provider);
    takeUnlessEdited(draft_.accountID, stored_.accountID, now.accountID);
    takeUnlessEdited(draft_.recipient, stored_.recipient, now.recipient);
    stored_ = now;
}

QString EmailDraft::introduction() {
    return worded(tr("A clear summary after every backup, including no-change runs and failures. Emails wait "
                     "and retry if your Mac is offline."));
}

QVariantList EmailDraft::providers() {
    return {QVariantMap{{"value", disabled}, {"title", tr("Off")}},
            QVariantMap{{"value", gmail}, {"title", tr("Gmail")}}};
}

QString EmailDraft::provider() const {
    return isGmail() ? gmail : disabled;
}

QVariantList EmailDraft::accounts() const {
    return accountChoices(store_->state());
}

QString EmailDraft::accountID() const {
    return QString::fromStdString(draft_.accountID);
}

QString EmailDraft::recipient() const {
    return QString::fromStdString(draft_.recipient);
}

const GoogleAccount* EmailDraft::account() const {
    return store_->state().account(draft_.accountID);
}

bool EmailDraft::lacksCredential(const GoogleAccount& account) const {
    return !store_->state().availableCredentials->contains(account.id);
}

bool EmailDraft::needsPermission() const {
    if (!isGmail())
        return false;
    if (store_->state().configuration->accounts.empty())
        return true;
    const GoogleAccount* const sender = account();
    return sender && (!sender->canSendEmail || lacksCredential(*sender));
}

QString EmailDraft::permissionTitle() const {
    const GoogleAccount* const sender = account();
    if (!sender)
        return connection_.title();
    return connection_.titleOr(lacksCredential(*sender) ? tr("Reconnect Google account…")
                                                        : tr("Allow Gmail to send summaries…"));
}

QString EmailDraft::saveTitle() const {
    return isSaved_ ? tr("Saved") : tr("Save email settings");
}

QString EmailDraft::retryTitle() const {
    const int count = static_cast<int>(store_->state().pendingEmails());
    return tr("Retry %n queued emails", nullptr, count);
}

void EmailDraft::edit(EmailSettings draft) {
    if (draft == draft_)
        return;
    draft_ = std::move(draft);
    isSaved_ = false;
    error_.clear();
    emit changed();
}

void EmailDraft::setProvider(const QString& provider) {
    EmailSettings draft = draft_;
    draft.provider = provider == gmail ? EmailProvider::gmail : EmailProvider::disabled;
    edit(std::move(draft));
}

void EmailDraft::setAccountID(const QString& id) {
    EmailSettings draft = draft_;
    draft.accountID = id.toStdString();
    edit(std::move(draft));
}

void EmailDraft::setRecipient(const QString& recipient) {
    EmailSettings draft = draft_;
    draft.recipient = recipient.toStdString();
    edit(std::move(draft));
}

void EmailDraft::askForPermission() {
    const GoogleAccount* const sender = account();
    store_->connect(true, sender ? std::optional(*sender) : std::nullopt);
}

void EmailDraft::save() {
    const EmailSettings wanted = draft_;
    try {
        store_->saveEmail(draft_);
        error_.clear();
        isSaved_ = true;
    } catch (const std::exception& failure) {
        draft_ = wanted; // what is put back in the store is not put back in the form
        error_ = QString::fromStdString(words(failure));
    }
    emit changed();
}

void EmailDraft::retry() {
    store_->retryEmails();
}

} // namespace marrowbox
