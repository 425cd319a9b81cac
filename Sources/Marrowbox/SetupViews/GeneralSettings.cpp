#include "Marrowbox/SetupViews/GeneralSettings.h"

#include "Platform/Wording.h"

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
    return tr(worded("Approve Marrowbox in System Settings → General → Login Items.").c_str());
}

QString GeneralSettings::closingNote() {
    return tr(worded("Closing the window keeps backups running in the menu bar. Quitting the app pauses "
                     "scheduled backups until it opens again.")
                  .c_str());
}

QString GeneralSettings::rcloneHint() {
    return tr(worded("Install it with Homebrew: brew install rclone").c_str());
}

QString GeneralSettings::client() const {
    return usesImportedClient() ? project() : tr("Built in");
}

QString GeneralSettings::project() const {
    return QString::fromStdString(*store_->state().credentialProject);
}

QString GeneralSettings::clientNote() {
    return tr(worded("Marrowbox ships with its own Google OAuth client. Import one only to sign in through "
                     "your own Cloud project. Tokens stay securely on this Mac.")
                  .c_str());
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
