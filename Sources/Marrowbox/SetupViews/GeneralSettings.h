#pragma once

#include "Marrowbox/AppStore/AppStore.h"

#include <QObject>
#include <memory>
#include <qqmlregistration.h>

namespace marrowbox {

/// The settings that belong to no account and no backup: start at login, rclone, the OAuth client. Main
/// thread.
class GeneralSettings : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(bool startsAtLogin READ startsAtLogin NOTIFY changed)
    Q_PROPERTY(bool needsApproval READ needsApproval NOTIFY changed)
    Q_PROPERTY(QString approvalNote READ approvalNote CONSTANT)
    Q_PROPERTY(QString closingNote READ closingNote CONSTANT)
    Q_PROPERTY(bool lacksRclone READ lacksRclone CONSTANT)
    Q_PROPERTY(QString rcloneHint READ rcloneHint CONSTANT)
    Q_PROPERTY(QString client READ client NOTIFY changed)
    Q_PROPERTY(QString project READ project NOTIFY changed)
    Q_PROPERTY(QString clientNote READ clientNote CONSTANT)
    Q_PROPERTY(bool usesImportedClient READ usesImportedClient NOTIFY changed)

  public:
    explicit GeneralSettings(std::shared_ptr<AppStore> store, QObject* parent = nullptr);

    bool startsAtLogin() const { return *store_->state().startAtLogin; }
    /// The desktop waits for the user's word before it starts the program at login.
    bool needsApproval() const { return *store_->state().loginRequiresApproval; }
    static QString approvalNote();
    static QString closingNote();
    bool lacksRclone() const { return !store_->surroundings().rclone; }
    static QString rcloneHint();
    /// "Built in", or the project of the imported client.
    QString client() const;
    QString project() const;
    static QString clientNote();
    bool usesImportedClient() const { return store_->state().configuration->usesImportedClient; }

    Q_INVOKABLE void setStartsAtLogin(bool starts);
    Q_INVOKABLE void importClient();
    Q_INVOKABLE void useBundledClient();

  signals:
    void changed();

  private:
    void follow(StoreField field);

    std::shared_ptr<AppStore> store_;
};

} // namespace marrowbox
