#include "Marrowbox/ContentView/HistoryModel.h"

#include "Marrowbox/ContentView/EmailTone.h"
#include "Marrowbox/ContentView/Figures.h"
#include "Marrowbox/Platform/ScreenWording.h"

#include <QStringList>

namespace marrowbox {

HistoryModel::HistoryModel(std::shared_ptr<AppStore> store, const UnitRuns& runs, QObject* parent)
    : IdentifiedRows(parent), store_(std::move(store)), runs_(runs),
      formats_(store_->surroundings().formats()) {
    connect(store_.get(), &StoreChanges::changed, this, [this](StoreField field) {
        if (field == StoreField::snapshots)
            refresh();
        else if (field == StoreField::storageUsage)
            announce({dataSize, fullSize, spokenName});
        else if (field == StoreField::mounted)
            announce({isMounted, spokenName});
        else if (field == StoreField::configuration)
            announce({emailText, emailShortText, emailIcon, emailTone, spokenName});
    });
    refresh();
}

void HistoryModel::refresh() {
    formats_ = store_->surroundings().formats();
    snapshots_ = *store_->state().snapshots;
    byID_.clear();
    std::vector<Uuid> ids;
    ids.reserve(snapshots_->size());
    for (const Snapshot& snapshot : *snapshots_) {
        ids.push_back(snapshot.id);
        byID_.try_emplace(snapshot.id, &snapshot);
    }
    setRows(std::move(ids));
}

QString HistoryModel::mountTitle() {
    return worded(tr("Mount read-only in Finder"));
}

QHash<int, QByteArray> HistoryModel::roleNames() const {
    return {{snapshotID, "snapshotID"},
            {dateText, "dateText"},
            {summary, "summary"},
            {emailText, "emailText"},
            {emailShortText, "emailShortText"},
            {emailIcon, "emailIcon"},
            {emailTone, "emailTone"},
            {dataSize, "dataSize"},
            {fullSize, "fullSize"},
            {isMounted, "isMounted"},
            {spokenName, "spokenName"}};
}

const Snapshot* HistoryModel::at(const QModelIndex& index) const {
    const Uuid* const id = idAt(index);
    if (!id)
        return nullptr;
    const auto found = byID_.find(*id);
    return found == byID_.end() ? nullptr : found->second;
}

const Snapshot* HistoryModel::withID(const QString& id) const {
    const auto parsed = Uuid::parse(id.toStdString());
    const auto found = parsed ? byID_.find(*parsed) : byID_.end();
    return found == byID_.end() ? nullptr : found->second;
}

QVariant HistoryModel::data(const QModelIndex& index, int role) const {
    const Snapshot* const snapshot = at(index);
    if (!snapshot)
        return {};
    switch (role) {
    case snapshotID:
        return QString::fromStdString(snapshot->id.text());
    case dateText:
        return date(*snapshot);
    case summary:
        return summaryText(snapshot->summary);
    case emailText:
    case emailShortText:
    case emailIcon:
    case emailTone:
        return email(*snapshot, role);
    case dataSize:
    case fullSize:
        return size(*snapshot, role);
    case isMounted:
        return isMountedNow(*snapshot);
    case spokenName:
        return spoken(*snapshot);
    default:
        return {};
    }
}

QString HistoryModel::date(const Snapshot& snapshot) const {
    return QString::fromStdString(formats_.dateAndTime(snapshot.completedAt));
}

bool HistoryModel::isMountedNow(const Snapshot& snapshot) const {
    return store_->state().mounted->contains(snapshot.id);
}

QVariant HistoryModel::email(const Snapshot& snapshot, int role) const {
    const RunRecord* const run = runs_.ofSnapshot(snapshot.id);
    if (!run)
        return QString();
    const RunEmailStatus status = RunEmailStatus::of(*run, formats_);
    switch (role) {
    case emailText:
        return QString::fromStdString(status.text);
    case emailShortText:
        return QString::fromStdString(status.shortText);
    case emailIcon:
        return toneIcon(status.tone);
    default:
        return toneName(status.tone);
    }
}

QString HistoryModel::size(const Snapshot& snapshot, int role) const {
    const auto& sizes = store_->state().storageUsage->bySnapshot;
    const auto found = sizes.find(snapshot.id);
    if (found == sizes.end())
        return {};
    const SnapshotStorageUsage& usage = found->second;
    if (role == fullSize)
        return tr("%1 snapshot").arg(sizeText(usage.logicalBytes, formats_));
    const QString bytes = sizeText(usage.incrementalBytes, formats_);
    return (usage.isBaseline ? tr("%1 baseline") : tr("+%1 data")).arg(bytes);
}

QString HistoryModel::spoken(const Snapshot& snapshot) const {
    QStringList parts = {date(snapshot), summaryText(snapshot.summary), email(snapshot, emailText).toString(),
                         size(snapshot, dataSize), size(snapshot, fullSize)};
    if (isMountedNow(snapshot))
        parts.append(tr("Mounted"));
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

void HistoryModel::mount(const QString& id) {
    if (const Snapshot* const snapshot = withID(id))
        store_->explore(*snapshot);
}

void HistoryModel::restore(const QString& id) {
    if (const Snapshot* const snapshot = withID(id))
        store_->restore(*snapshot);
}

void HistoryModel::eject(const QString& id) {
    if (const Snapshot* const snapshot = withID(id))
        store_->eject(snapshot->id);
}

} // namespace marrowbox
