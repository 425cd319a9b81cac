#pragma once

#include "Platform/DataDirectory.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <chrono>
#include <functional>

namespace marrowbox {

/// The bus name of the program with its own data folder; one that keeps its data elsewhere, as
/// MARROW_DATA_DIR tells, is another program to its user, and has a name of its own.
QString instanceName(const Environment& environment);

/// Makes a second start of the program raise the window of the first. The first one owns a name on the
/// session bus and can be activated under it, in the form that desktops use too. The thread of an event loop.
class SingleInstance : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

  public:
    enum class Role {
        first,       ///< Activations by later starts come from now on.
        second,      ///< The first one has been told to raise its window; this one may end.
        unreachable, ///< There is no bus, or the first one does not answer: go on as without a bus.
    };

    /// The function is called on each activation with the token that lets a window come to the front; empty
    /// when there is none.
    SingleInstance(QDBusConnection sessionBus, QString name, std::function<void(QString token)> activated);
    /// Gives the name back.
    ~SingleInstance() override;

    /// The token is the one that this start of the program was given. Waits for a first one's answer, at most
    /// this long.
    Role claim(const QString& token, std::chrono::milliseconds patience);

  public Q_SLOTS:
    // What the bus may call.
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& addresses, const QVariantMap& platformData);
    void ActivateAction(const QString& action, const QVariantList& parameters,
                        const QVariantMap& platformData);

  private:
    Role activateFirst(const QString& token, std::chrono::milliseconds patience);

    QDBusConnection bus_;
    QString name_;
    QString path_;
    std::function<void(QString token)> activated_;
    bool isFirst_ = false;
};

} // namespace marrowbox
