#include "Marrowbox/ContentView/UnitPage.h"

#include "Marrowbox/ContentView/Figures.h"
#include "Models/DriveLink.h"
#include "Models/ScheduleCountdown.h"

#include <boost/describe/enum_to_string.hpp>

namespace marrowbox {

namespace {

/// What the parts of a page are made from.
struct Subject {
    const AppState& state;
    const SyncUnit& unit;
    const RunRecord* last;
    const PageMoment& moment;
    const GoogleAccount* account = state.account(unit.accountID);
    bool isConnected = state.availableCredentials->contains(unit.accountID);
    bool isBusy = *state.activeUnitID == unit.id;
};

QString shown(const std::string& text) {
    return QString::fromStdString(text);
}

QString shown(const std::optional<std::string>& text) {
    return text ? shown(*text) : QString();
}

bool isShared(const DriveLocation& source) {
    return source.sharedDriveID.has_value();
}

QString reconnectTitle(const Subject& subject) {
    if (*subject.state.isConnecting)
        return UnitPage::tr("Waiting for Google…");
    return subject.account ? UnitPage::tr("Reconnect") : UnitPage::tr("Connect Google account");
}

QString statusTitle(const Subject& subject) {
    if (subject.isBusy)
        return UnitPage::tr("Backing up your files.");
    if (subject.last && subject.last->outcome == RunOutcome::failed)
        return UnitPage::tr("The last snapshot needs attention.");
    if (subject.last && subject.last->outcome == RunOutcome::succeeded)
        return UnitPage::tr("Your files are in a safe place.");
    return UnitPage::tr("Ready for your first snapshot.");
}

QString nextText(const Subject& subject) {
    const SyncUnit& unit = subject.unit;
    if (!subject.isConnected)
        return UnitPage::tr("Reconnect this Google account to resume automatic backups.");
    if (unit.schedule.frequency == ScheduleFrequency::manual || !unit.nextRun)
        return UnitPage::tr("Back up whenever you’re ready.");
    if (*unit.nextRun > subject.moment.now)
        return UnitPage::tr("Next snapshot %1").arg(shown(subject.moment.formats.dateAndTime(*unit.nextRun)));
    return UnitPage::tr("The next snapshot is due now and starts in a moment.");
}

QString scheduleDetail(const Subject& subject) {
    const SyncUnit& unit = subject.unit;
    if (!subject.isConnected)
        return UnitPage::tr("Stopped · reconnect Google");
    if (unit.schedule.frequency == ScheduleFrequency::manual)
        return UnitPage::tr("Only when you start it");
    if (!unit.nextRun)
        return UnitPage::tr("Catches up after sleep");
    const auto remaining = ScheduleCountdown::remaining(subject.moment.now, *unit.nextRun);
    if (!remaining)
        return UnitPage::tr("Due now");
    return UnitPage::tr("Next snapshot in %1").arg(shown(*remaining));
}

QString originDetail(const DriveLocation& source) {
    if (!isShared(source))
        return UnitPage::tr("Folder in My Drive");
    return source.sharedDriveID == source.id ? UnitPage::tr("Whole shared drive")
                                             : UnitPage::tr("Folder in a shared drive");
}

void describeState(UnitPage& page, const Subject& subject) {
    page.isBusy = subject.isBusy;
    page.isDisconnected = !subject.isConnected;
    page.isConnecting = *subject.state.isConnecting;
    page.isExploring = *subject.state.isExploring;
    page.reconnectTitle = reconnectTitle(subject);
    page.statusTitle = statusTitle(subject);
    page.destinationIssue = shown(*subject.state.destinationIssue);
    if (!subject.isBusy) {
        page.nextText = nextText(subject);
        if (subject.last)
            page.lastResult = shown(subject.last->detail);
    }
    page.lastResultIsGood = subject.last && subject.last->outcome == RunOutcome::succeeded;
    if (!(*subject.state.snapshots)->empty())
        page.exploreTitle =
            page.isExploring ? UnitPage::tr("Preparing snapshot…") : UnitPage::tr("Explore snapshot");
}

void describeOrigin(UnitPage& page, const Subject& subject) {
    const DriveLocation& source = subject.unit.source;
    const GoogleAccount* const account = subject.account;
    page.eyebrow = isShared(source) ? UnitPage::tr("SHARED DRIVE") : UnitPage::tr("GOOGLE DRIVE");
    page.accountLine = account ? shown(account->email) : UnitPage::tr("Account disconnected");
    const bool isMyDrive = source.id == "root" && !isShared(source);
    page.origin = isMyDrive ? UnitPage::tr("All of My Drive") : shown(source.name);
    page.originDetail = originDetail(source);
    page.originIcon = sourceIcon(source);
    page.originLink =
        shown(DriveLink::folder(source, account ? std::optional(account->email) : std::nullopt));
}

void describeStorage(UnitPage& page, const Subject& subject) {
    const BackupStorageUsage& usage = *subject.state.storageUsage;
    page.isReading = *subject.state.isReadingHistory && (*subject.state.snapshots)->empty();
    page.keepsStorageRoom = page.isReading && subject.last;
    if (!usage.totalRetainedBytes || !usage.latestSnapshotBytes)
        return;
    page.keepsStorageRoom = true;
    page.totalSize = sizeText(*usage.totalRetainedBytes, subject.moment.formats);
    page.latestSize = sizeText(*usage.latestSnapshotBytes, subject.moment.formats);
}

} // namespace

QString sourceIcon(const DriveLocation& source) {
    return isShared(source) ? QStringLiteral("person.2.crop.square.stack") : QStringLiteral("folder");
}

QString themeName(AccentTheme theme) {
    return QString::fromLatin1(boost::describe::enum_to_string(theme, "blue"));
}

UnitPage unitPage(const AppState& state, const SyncUnit& unit, const RunRecord* last,
                  const PageMoment& moment) {
    const Subject subject{state, unit, last, moment};
    UnitPage page;
    page.name = shown(unit.name);
    page.theme = themeName(unit.accent());
    page.backUpLabel = UnitPage::tr("Back up %1").arg(page.name);
    page.removeQuestion = UnitPage::tr("Remove “%1”?").arg(page.name);
    page.destination = shown(unit.destinationPath);
    const auto snapshots = static_cast<std::int64_t>((*state.snapshots)->size());
    page.destinationDetail = UnitPage::tr("%1 saved snapshots").arg(countText(snapshots));
    page.schedule = shown(unit.schedule.summary(moment.calendar));
    page.scheduleDetail = scheduleDetail(subject);
    describeState(page, subject);
    describeOrigin(page, subject);
    describeStorage(page, subject);
    return page;
}

} // namespace marrowbox
