#include "SetupWorld.h"

#include "LoopbackPeer.h"

#include <QUrl>
#include <QUrlQuery>
#include <chrono>
#include <gtest/gtest.h>

namespace marrowbox::test {

SetupWorld::SetupWorld() {
    drive.addFolder("root", "letters", "Letters");
    drive.addFolder("root", "photos", "Photos");
    drive.addFolder("letters", "old", "Old");
    drive.addSharedDrive("studio", "Studio");
    drive.addFolder("studio", "plans", "Plans");
    web = drive.web();
}

SetupWorld::~SetupWorld() {
    end();
}

AppStore& SetupWorld::startWith(std::vector<GoogleAccount> accounts) {
    for (const GoogleAccount& account : accounts)
        addCredential(account);
    write({.accounts = std::move(accounts)});
    return start();
}

void SetupWorld::consent(const GoogleAccount& account) {
    drive.signIn(account);
    time.settle();
    const std::string opened = desktop.calls().back();
    const QUrlQuery asked(QUrl(QString::fromStdString(opened.substr(opened.find(' ') + 1))));
    const QUrl redirect(asked.queryItemValue("redirect_uri", QUrl::FullyDecoded));
    LoopbackPeer browser(static_cast<std::uint16_t>(redirect.port()));
    browser.send("GET " + redirect.path().toStdString() + "?code=code&state=" +
                 asked.queryItemValue("state").toStdString() + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    for (int turn = 0; turn < 200 && *state().isConnecting; ++turn) {
        time.context().restart();
        time.context().run_one_for(std::chrono::milliseconds(50));
    }
    EXPECT_FALSE(*state().isConnecting);
    time.settle();
}

GoogleAccount ben() {
    return {.id = "ben", .email = "ben@example.org", .name = "Ben"};
}

QStringList namesIn(DriveBrowser& browser) {
    QStringList names;
    for (int row = 0; row < browser.locations()->rowCount(); ++row)
        names.append(browser.locations()->index(row).data(LocationList::NameRole).toString());
    return names;
}

} // namespace marrowbox::test
