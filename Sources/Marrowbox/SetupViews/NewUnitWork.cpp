// What the sheet waits for: the folder chooser, and the making of the backup.
#include "Marrowbox/AppStore/Failure.h"
#include "Marrowbox/AppStore/OnExecutor.h"
#include "Marrowbox/Platform/ScreenWording.h"
#include "Marrowbox/SetupViews/Destination.h"
#include "Marrowbox/SetupViews/NewUnitModel.h"
#include "Marrowbox/SetupViews/ScreenWork.h"
#include "Platform/Cancellation.h"

namespace marrowbox {

namespace fs = std::filesystem;

void NewUnitModel::chooseDestination() {
    if (isChoosing_)
        return;
    isChoosing_ = true;
    emit changed();
    startScreenWork(store_->surroundings().main, choose(this, store_, life_.get_token()));
}

asio::awaitable<void> NewUnitModel::choose(QPointer<NewUnitModel> self, std::shared_ptr<AppStore> store,
                                           std::stop_token stop) {
    Choice choice;
    try {
        const std::string message =
            worded(tr("Choose a folder on this Mac, an external drive, or a NAS share "
                      "mounted in Finder."))
                .toStdString();
        const std::optional<fs::path> chosen = co_await store->surroundings().desktop.chooseFolder(message);
        throwIfCancelled(stop);
        if (chosen) {
            fs::path resolved = co_await onExecutor(store->surroundings().pool,
                                                    [folder = *chosen] { return withoutLinks(folder); });
            choice.folder = std::move(resolved);
        }
    } catch (const CancellationError&) { // nothing is chosen, and nothing is to be told
    } catch (const std::exception& failure) {
        choice.issue = words(failure);
    }
    if (self && !stop.stop_requested())
        self->take(std::move(choice));
}

void NewUnitModel::take(Choice choice) {
    isChoosing_ = false;
    if (choice.issue)
        return fail(QString::fromStdString(*choice.issue));
    if (!choice.folder) {
        emit changed();
        return;
    }
    if (liesInGoogleDrive(*choice.folder))
        return fail(tr("Google Drive cannot be a backup destination. Choose a local disk or NAS folder."));
    destination_ = std::move(choice.folder);
    fail({});
}

SyncUnit NewUnitModel::described() const {
    SyncUnit unit;
    unit.id = Uuid::random();
    unit.name = name_.trimmed().toStdString();
    unit.accountID = browser_.accountID();
    unit.source = *source_;
    unit.destinationPath = destination_->string();
    unit.schedule = {.frequency = ScheduleFrequency::daily, .hour = 9, .minute = 0, .weekday = 2};
    unit.theme = AccentTheme::blue;
    unit.notifications = NotificationPolicy::all;
    const AppSurroundings& around = store_->surroundings();
    return withFirstRun(std::move(unit), around.clock(), around.calendar());
}

void NewUnitModel::create() {
    if (!canCreate())
        return;
    isCreating_ = true;
    fail({});
    startScreenWork(store_->surroundings().main,
                    make(this, store_, described(), *destination_, life_.get_token()));
}

asio::awaitable<void> NewUnitModel::make(QPointer<NewUnitModel> self, std::shared_ptr<AppStore> store,
                                         SyncUnit unit, fs::path destination, std::stop_token stop) {
    std::optional<std::string> issue;
    try {
        Desktop& desktop = store->surroundings().desktop;
        const ByteString bookmark = co_await onExecutor(store->surroundings().pool, [&desktop, destination] {
            return desktop.makeBookmark(destination);
        });
        unit.destinationBookmark = bookmark;
        throwIfCancelled(stop);
        co_await store->addUnit(std::move(unit), std::move(destination));
    } catch (const CancellationError&) {
        co_return;
    } catch (const std::exception& failure) {
        issue = words(failure);
    }
    if (self)
        self->finish(issue);
}

void NewUnitModel::finish(const std::optional<std::string>& issue) {
    isCreating_ = false;
    if (issue)
        return fail(QString::fromStdString(*issue));
    emit changed();
    dismiss();
}

} // namespace marrowbox
