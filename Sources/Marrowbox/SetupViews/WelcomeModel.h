#pragma once

#include "Marrowbox/SetupViews/AccountConnection.h"

namespace marrowbox {

/// What the window shows while no backup is selected: how to connect the first account, and then how to make
/// the first backup. Main thread.
class WelcomeModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(bool hasAccounts READ hasAccounts NOTIFY changed)
    Q_PROPERTY(QString subtitle READ subtitle CONSTANT)
    Q_PROPERTY(QString introduction READ introduction CONSTANT)
    Q_PROPERTY(QString connectedTitle READ connectedTitle CONSTANT)
    Q_PROPERTY(QString accountCount READ accountCount NOTIFY changed)
    Q_PROPERTY(QString nextStep READ nextStep CONSTANT)
    Q_PROPERTY(QString createTitle READ createTitle CONSTANT)
    Q_PROPERTY(QVariantList notes READ notes CONSTANT)
    Q_PROPERTY(marrowbox::AccountConnection* connection READ connection CONSTANT)

  public:
    explicit WelcomeModel(std::shared_ptr<AppStore> store, QObject* parent = nullptr);

    bool hasAccounts() const;
    // Without an account.
    static QString subtitle();
    static QString introduction();
    // With one or more.
    static QString connectedTitle();
    QString accountCount() const;
    static QString nextStep();
    static QString createTitle();
    /// Three promises, each with icon, title and detail.
    static QVariantList notes();
    AccountConnection* connection() { return &connection_; }

    Q_INVOKABLE void createBackup();

  signals:
    void changed();

  private:
    std::shared_ptr<AppStore> store_;
    AccountConnection connection_;
};

} // namespace marrowbox
