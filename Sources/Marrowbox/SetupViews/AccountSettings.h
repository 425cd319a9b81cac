#pragma once

#include "Marrowbox/AppStore/AppStore.h"

#include <QObject>
#include <QVariantList>
#include <memory>
#include <qqmlregistration.h>

namespace marrowbox {

/// The connected Google accounts, with what can be done about each. Main thread.
class AccountSettings : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(QVariantList accounts READ accounts NOTIFY changed)

  public:
    explicit AccountSettings(std::shared_ptr<AppStore> store, QObject* parent = nullptr);

    /// One row an account: id, email, grant, issue (empty when there is none), canSendEmail.
    QVariantList accounts() const;

    Q_INVOKABLE void reconnect(const QString& id);
    Q_INVOKABLE void enableSending(const QString& id);
    Q_INVOKABLE void disconnectAccount(const QString& id);

  signals:
    void changed();

  private:
    void connectKnown(const QString& id, bool email);

    std::shared_ptr<AppStore> store_;
};

} // namespace marrowbox
