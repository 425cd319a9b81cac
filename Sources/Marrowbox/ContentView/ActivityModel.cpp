#include "Marrowbox/ContentView/ActivityModel.h"

#include "Marrowbox/ContentView/EmailTone.h"
#include "Marrowbox/ContentView/Figures.h"
#include "Marrowbox/Platform/ScreenWording.h"

#include <QStringList>

namespace marrowbox {

namespace {

QString outcomeText(RunOutcome outcome) {
    switch (outcome) {
    case RunOutcome::running:
        return ActivityModel::tr("Running");
    case RunOutcome::succeeded:
        return ActivityModel::tr("Succeeded");
    case RunOutcome::failed:
        return ActivityModel::tr("Failed");
    case RunOutcome::cancelled:
        return ActivityModel::tr("Cancelled");
    case RunOutcome::interrupted:
        return ActivityModel::tr("Interrupted");
    }
    return {};
}

QString toneOf(RunOutcome outcome) {
    switch (outcome) {
    case RunOutcome::running:
        return QStringLiteral("running");
    case RunOutcome::succeeded:
        return QStringLiteral("good");
    case RunOutcome::failed:
        return QStringLiteral("bad");
    case RunOutcome::cancelled:
    case RunOutcome::interrupted:
        break;
    }
    return QStringLiteral("neutral");
}

QString runText(const RunRecord& run) {
    if (run.detail)
        return QString::fromStdString(*run.detail);
    return run.outcome == RunOutcome::succeeded ? summaryText(run.summary) : QString();
}

QString catchUpText(const RunRecord& run) {
    if (!run.missedRuns)
        return {};
    const QString sentence =
        *run.missedRuns == 1
            ? ActivityModel::tr("Catch-up snapshot · {count} scheduled snapshot missed while this Mac was "
                                "asleep or offline")
            : ActivityModel::tr("Catch-up snapshot · {count} scheduled snapshots missed while this Mac was "
                                "asleep or offline");
    return worded(sentence).replace(QStringLiteral("{count}"), countText(*run.missedRuns));
}

} // namespace

ActivityModel::ActivityModel(std::shared_ptr<AppStore> store, const UnitRuns& runs, QObject* parent)
    : IdentifiedRows(parent), store_(std::move(store)), runs_(runs),
      formats_(store_->surroundings().formats()) {
    connect(store_.get(), &StoreChanges::changed, this, [this](StoreField field) {
        if (field == StoreField::configuration || field == StoreField::selectedUnitID)
            refresh();
    });
    refresh();
}

void ActivityModel::refresh() {
    formats_ = store_->surroundings().formats();
    std::vector<Uuid> ids;
    ids.reserve(runs_.newestFirst().size());
    for (const RunRecord* const run : runs_.newestFirst())
        ids.push_back(run->id);
    setRows(std::move(ids));
    announce();
}

QHash<int, QByteArray> ActivityModel::roleNames() const {
    return {{dateText, "dateText"},   {outcome, "outcome"},     {outcomeTone, "outcomeTone"},
            {text, "text"},           {emailText, "emailText"}, {emailIcon, "emailIcon"},
            {emailTone, "emailTone"}, {catchUp, "catchUp"},     {spokenName, "spokenName"}};
}

QVariant ActivityModel::data(const QModelIndex& index, int role) const {
    const Uuid* const id = idAt(index);
    const RunRecord* const run = id ? runs_.withID(*id) : nullptr;
    if (!run)
        return {};
    switch (role) {
    case dateText:
        return QString::fromStdString(formats_.dateAndTime(run->startedAt));
    case outcome:
        return outcomeText(run->outcome);
    case outcomeTone:
        return toneOf(run->outcome);
    case text:
        return runText(*run);
    case emailText:
        return QString::fromStdString(RunEmailStatus::of(*run, formats_).text);
    case emailIcon:
        return toneIcon(RunEmailStatus::of(*run, formats_).tone);
    case emailTone:
        return toneName(RunEmailStatus::of(*run, formats_).tone);
    case catchUp:
        return catchUpText(*run);
    case spokenName:
        return spoken(*run);
    default:
        return {};
    }
}

QString ActivityModel::spoken(const RunRecord& run) const {
    QStringList parts = {QString::fromStdString(formats_.dateAndTime(run.startedAt)),
                         outcomeText(run.outcome), runText(run), catchUpText(run),
                         QString::fromStdString(RunEmailStatus::of(run, formats_).text)};
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

} // namespace marrowbox
