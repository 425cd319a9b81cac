#include "Marrowbox/MarrowboxApp/RunNotices.h"

#include <algorithm>

namespace marrowbox {

std::optional<RunNotice> noticeOf(const RunRecord& run) {
    const QString name = QString::fromStdString(run.unitName);
    if (run.outcome == RunOutcome::failed)
        return RunNotice{RunNotices::tr("“%1” was not backed up").arg(name),
                         QString::fromStdString(run.detail.value_or(""))};
    if (run.outcome == RunOutcome::succeeded && run.missedRuns)
        return RunNotice{
            RunNotices::tr("“%1” has caught up").arg(name),
            RunNotices::tr("A new snapshot makes up for those missed while this computer was asleep or "
                           "offline.")};
    return std::nullopt;
}

RunNotices::RunNotices(const AppState& state, StoreChanges& changes,
                       std::function<void(const RunNotice&)> tell)
    : state_(state), tell_(std::move(tell)) {
    connect(&changes, &StoreChanges::changed, this, &RunNotices::follow);
}

void RunNotices::follow(StoreField field) {
    const auto& runs = state_.configuration->runs;
    if (field == StoreField::activeUnitID && *state_.activeUnitID && !runs.empty())
        running_ = runs.front().id; // the run that begins was just written down, newest first
    if (field != StoreField::configuration || !running_)
        return;
    const auto run = std::ranges::find(runs, *running_, &RunRecord::id);
    if (run == runs.end() || run->outcome == RunOutcome::running)
        return;
    running_.reset();
    if (const auto notice = noticeOf(*run))
        tell_(*notice);
}

} // namespace marrowbox
