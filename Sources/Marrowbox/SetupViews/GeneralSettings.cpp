#include "Marrowbox/SetupViews/GeneralSettings.h"

#include "Marrowbox/Platform/ScreenWording.h"

namespace marrowbox {

GeneralSettings::GeneralSettings(std::shared_ptr<AppStore> store, QObject* parent)
    : QObject(parent), store_(std::move(store)) {
    connect(store_.get(), &StoreChanges::changed, this, &GeneralSettings::follow);
}

void GeneralSettings::follow(StoreField field) {
    switch (field) {
    case StoreField::configuration:
    case StoreField::credentialProject:
    case StoreField::startAtLogin:
    case StoreField::loginRequiresApproval:
        emit changed();
        break;
    default:
        break;
    }
}

QString GeneralSettings::approvalNote() {
    return worded(tr("Approve Marrowbox in System Settings → General → Login Items."));
}

QString GeneralSettings::closingNote() {
    return worded(tr("Closing the window keeps backups running in the menu bar. Quitting the app pauses "
                     "scheduled backups until it opens again."));
}

QString GeneralSettings::rcloneHint() {
    return worded(tr("Install it with Homebrew: brew install rclone"));
}

QString GeneralSettings::client() const {
    return usesImportedClient() ? project() : tr("Built in");
}

QString GeneralSettings::project() const {
    return QString::fromStdString(*store_->state().credentialProject);
}

QString GeneralSettings::clientNote() {
    return worded(tr("Marrowbox ships with its own Google OAuth client. Import one only to sign in through "
                     "your own Cloud project. Tokens stay securely on this Mac."));
}

void GeneralSettings::setStartsAtLogin(bool starts) {
    store_->setLogin(starts);
}

void GeneralSettings::importClient() {
    store_->importClient();
}

void GeneralSettings::useBundledClient() {
    store_->useBundledClient();
}

} // namespace marrowbox
