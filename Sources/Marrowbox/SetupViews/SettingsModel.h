#pragma once

#include "Marrowbox/SetupViews/AccountConnection.h"
#include "Marrowbox/SetupViews/AccountSettings.h"
#include "Marrowbox/SetupViews/EmailDraft.h"
#include "Marrowbox/SetupViews/GeneralSettings.h"

#include <QStringList>

namespace marrowbox {

/// The tabs of the settings, by their number.
enum class SettingsTab { general, accounts, email };

/// The sheet of the settings that all backups share. Main thread.
class SettingsModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(QStringList tabs READ tabs CONSTANT)
    Q_PROPERTY(int tab READ tab NOTIFY tabChanged)
    Q_PROPERTY(marrowbox::AccountConnection* connection READ connection CONSTANT)
    Q_PROPERTY(marrowbox::GeneralSettings* general READ general CONSTANT)
    Q_PROPERTY(marrowbox::AccountSettings* accounts READ accounts CONSTANT)
    Q_PROPERTY(marrowbox::EmailDraft* email READ email CONSTANT)

  public:
    explicit SettingsModel(std::shared_ptr<AppStore> store, QObject* parent = nullptr);

    static QStringList tabs();
    int tab() const { return *store_->state().settingsTab; }
    AccountConnection* connection() { return &connection_; }
    GeneralSettings* general() { return &general_; }
    AccountSettings* accounts() { return &accounts_; }
    EmailDraft* email() { return &email_; }

    Q_INVOKABLE void showTab(int tab);
    Q_INVOKABLE void dismiss();

  signals:
    void tabChanged();
    void dismissed();

  private:
    std::shared_ptr<AppStore> store_;
    AccountConnection connection_;
    GeneralSettings general_;
    AccountSettings accounts_;
    EmailDraft email_;
};

} // namespace marrowbox
