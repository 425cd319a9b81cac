#pragma once

#include "Marrowbox/AppStore/AppStore.h"

#include <QObject>
#include <QVariantList>
#include <memory>
#include <qqmlregistration.h>

namespace marrowbox {

class AccountConnection;

/// The email settings as the user edits them; nothing is stored before they are saved. Main thread.
class EmailDraft : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(QString introduction READ introduction CONSTANT)
    Q_PROPERTY(QVariantList providers READ providers CONSTANT)
    Q_PROPERTY(QString provider READ provider NOTIFY changed)
    Q_PROPERTY(bool isGmail READ isGmail NOTIFY changed)
    Q_PROPERTY(QVariantList accounts READ accounts NOTIFY accountsChanged)
    Q_PROPERTY(QString accountID READ accountID NOTIFY changed)
    Q_PROPERTY(QString recipient READ recipient NOTIFY changed)
    Q_PROPERTY(bool needsPermission READ needsPermission NOTIFY changed)
    Q_PROPERTY(QString permissionTitle READ permissionTitle NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(bool isEdited READ isEdited NOTIFY changed)
    Q_PROPERTY(bool isSaved READ isSaved NOTIFY changed)
    Q_PROPERTY(QString saveTitle READ saveTitle NOTIFY changed)
    Q_PROPERTY(bool hasQueued READ hasQueued NOTIFY changed)
    Q_PROPERTY(QString retryTitle READ retryTitle NOTIFY changed)

  public:
    /// The connection must outlive the draft.
    EmailDraft(std::shared_ptr<AppStore> store, const AccountConnection& connection,
               QObject* parent = nullptr);

    static QString introduction();
    /// For a picker; the values are the stored names.
    static QVariantList providers();
    QString provider() const;
    bool isGmail() const { return draft_.provider == EmailProvider::gmail; }
    QVariantList accounts() const;
    QString accountID() const;
    QString recipient() const;
    /// The sender has yet to be asked for leave to send, or to be connected at all.
    bool needsPermission() const;
    QString permissionTitle() const;
    QString error() const { return error_; }
    bool isEdited() const { return draft_ != store_->state().configuration->email; }
    /// Saved a moment ago, and nothing was edited since.
    bool isSaved() const { return isSaved_; }
    QString saveTitle() const;
    bool hasQueued() const { return store_->state().pendingEmails() > 0; }
    QString retryTitle() const;

    Q_INVOKABLE void setProvider(const QString& provider);
    Q_INVOKABLE void setAccountID(const QString& id);
    Q_INVOKABLE void setRecipient(const QString& recipient);
    Q_INVOKABLE void askForPermission();
    Q_INVOKABLE void save();
    Q_INVOKABLE void retry();

  signals:
    void changed();
    void accountsChanged();

  private:
    void follow(StoreField field);
    /// Takes over what a sign-in changed in the stored settings, but for what the user has edited.
    void followStored();
    void edit(EmailSettings draft);
    const GoogleAccount* account() const;
    bool lacksCredential(const GoogleAccount& account) const;

    std::shared_ptr<AppStore> store_;
    const AccountConnection& connection_;
    EmailSettings draft_;
    EmailSettings stored_; ///< As the draft last saw them.
    QString error_;
    bool isSaved_ = false;
};

} // namespace marrowbox
