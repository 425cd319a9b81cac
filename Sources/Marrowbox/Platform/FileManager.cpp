#include "Marrowbox/Platform/FileManager.h"

#include "Marrowbox/Platform/BusCall.h"
#include "SnapshotMount/FileURL.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QStringList>

namespace marrowbox {

void FileManager::show(const std::filesystem::path& folder) {
    const std::string address = FileURL::ofFile(folder).text;
    auto request = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowFolders"));
    request << QStringList(QString::fromStdString(address)) << QString();
    auto* const answer = new QDBusPendingCallWatcher(ask(bus_, request), &questions_);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer, [this, answer, address] {
        if (answer->isError())
            launcher_.start("xdg-open", {address});
        answer->deleteLater();
    });
}

} // namespace marrowbox
