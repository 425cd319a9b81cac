#include "Marrowbox/MarrowboxApp/Quitting.h"

#include "Marrowbox/Platform/ScreenWording.h"

namespace marrowbox {

Quitting::Quitting(std::shared_ptr<AppStore> store, std::function<void()> end)
    : store_(std::move(store)), end_(std::move(end)) {
    connect(store_.get(), &StoreChanges::changed, this, &Quitting::follow);
}

QString Quitting::question() {
    return tr("Quit Marrowbox?");
}

QString Quitting::explanation() {
    return worded(
        tr("The running backup will be cancelled. Mounted snapshots stay available in Finder, where "
           "you can eject them even while Marrowbox is closed. Scheduled backups resume next time "
           "the app opens."));
}

QString Quitting::keepRunningText() {
    return tr("Keep running");
}

QString Quitting::quitText() {
    return tr("Quit");
}

void Quitting::request() {
    if (!*store_->state().activeUnitID)
        return end_();
    if (isWindingDown_)
        return;
    isAsking_ = true;
    emit changed();
}

void Quitting::windDown() {
    if (!*store_->state().activeUnitID)
        return end_();
    isAsking_ = false;
    isWindingDown_ = true;
    store_->cancelBackup();
    emit changed();
}

void Quitting::keepRunning() {
    isAsking_ = false;
    emit changed();
}

void Quitting::quit() {
    windDown();
}

void Quitting::follow(StoreField field) {
    if (field != StoreField::activeUnitID || *store_->state().activeUnitID)
        return;
    if (isWindingDown_)
        return end_();
    if (isAsking_) // nothing is left to ask about
        keepRunning();
}

} // namespace marrowbox
