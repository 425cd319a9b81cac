#include "Marrowbox/SetupViews/WelcomeModel.h"

#include <QVariantMap>

namespace marrowbox {

WelcomeModel::WelcomeModel(std::shared_ptr<AppStore> store, QObject* parent)
    : QObject(parent), store_(std::move(store)), connection_(store_) {
    connect(store_.get(), &StoreChanges::changed, this, [this](StoreField field) {
        if (field == StoreField::configuration)
            emit changed();
    });
}

bool WelcomeModel::hasAccounts() const {
    return !store_->state().configuration->accounts.empty();
}

QString WelcomeModel::subtitle() {
    return tr("Start by connecting your Google Drive account.");
}

QString WelcomeModel::introduction() {
    return tr("Marrowbox is a specialized software for backing up your Google Drive to hardware you own. "
              "Every file is protected. Google Docs, Sheets, and Slides are converted to .docx, .xlsx, and "
              ".pptx so they stay readable without Google.");
}

QString WelcomeModel::connectedTitle() {
    return tr("You are connected!");
}

QString WelcomeModel::accountCount() const {
    const int count = static_cast<int>(store_->state().configuration->accounts.size());
    return count == 1 ? tr("%n Google account connected", nullptr, count)
                      : tr("%n Google accounts connected", nullptr, count);
}

QString WelcomeModel::nextStep() {
    return tr("Next, create your first backup.");
}

QString WelcomeModel::createTitle() {
    return tr("Create your first backup");
}

QVariantList WelcomeModel::notes() {
    const auto note = [](const QString& icon, const QString& title, const QString& detail) {
        return QVariantMap{{"icon", icon}, {"title", title}, {"detail", detail}};
    };
    return {note("clock.arrow.circlepath", tr("History, kept"), tr("Forever by default")),
            note("doc.text", tr("Real documents"), tr("Word, Excel & PowerPoint")),
            note("lock", tr("Yours, always"), tr("Read-only access to Drive"))};
}

void WelcomeModel::createBackup() {
    store_->showNewUnit(true);
}

} // namespace marrowbox
