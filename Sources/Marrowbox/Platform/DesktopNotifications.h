#pragma once

#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

class QDBusPendingCallWatcher;

namespace marrowbox {

/// Short messages through the desktop's own notification service. A desktop without one shows nothing, and
/// nothing fails. The thread of an event loop.
class DesktopNotifications : public QObject {
    Q_OBJECT

  public:
    /// The function is called when the user clicks on a message.
    DesktopNotifications(QDBusConnection sessionBus, std::function<void()> activated);

    /// Plain texts; nothing in them is taken as markup.
    void notify(const QString& title, const QString& body);

  private Q_SLOTS:
    void actionInvoked(uint id, const QString& action);
    void notificationClosed(uint id, uint reason);

  private:
    struct Message {
        QString title;
        QString body;
    };
    void learnAbilities();
    void sendWaiting();
    void send(const Message& message);

    QDBusConnection bus_;
    std::function<void()> activated_;
    std::optional<bool> readsMarkup_; ///< Absent until the service has told.
    bool isAsking_ = false;
    std::vector<Message> waiting_;
    QSet<uint> shown_; ///< Those of this program; the service tells of the others too.
};

} // namespace marrowbox
