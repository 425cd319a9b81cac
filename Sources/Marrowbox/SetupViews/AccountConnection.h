#pragma once

#include "Marrowbox/AppStore/AppStore.h"

#include <QObject>
#include <QVariantList>
#include <memory>
#include <qqmlregistration.h>

namespace marrowbox {

/// The button that signs a Google account in, as every screen has it. Main thread.
class AccountConnection : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(bool isWaiting READ isWaiting NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString waitingReason READ waitingReason CONSTANT)

  public:
    explicit AccountConnection(std::shared_ptr<AppStore> store, QObject* parent = nullptr);

    /// A sign-in is under way, begun here or elsewhere.
    bool isWaiting() const { return *store_->state().isConnecting; }
    QString title() const;
    /// While a sign-in is under way every button for one says so; otherwise it keeps its own title.
    QString titleOr(const QString& own) const;

    /// Why no other sign-in can begin while one is under way.
    static QString waitingReason();

    Q_INVOKABLE void connectAccount();
    Q_INVOKABLE void cancel();

  signals:
    void changed();

  private:
    std::shared_ptr<AppStore> store_;
};

/// The connected accounts for a picker: value, title, and a detail where one has to be connected again.
QVariantList accountChoices(const AppState& state);

/// What stands beside an account whose credential is missing; empty beside any other.
QString accountIssue(const AppState& state, const GoogleAccount& account);

} // namespace marrowbox
