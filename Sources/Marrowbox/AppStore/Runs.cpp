#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/AppStore/Failure.h"
#include "Marrowbox/AppStore/OnExecutor.h"
#include "Platform/Cancellation.h"
#include "Platform/UnicodeText.h"

#include <algorithm>

namespace marrowbox {

namespace {

/// Seconds after which a failed scheduled backup tries again.
constexpr double retryDelay = 900;

bool wantsEmail(const AppConfiguration& configuration, NotificationPolicy policy) {
    return configuration.email.provider != EmailProvider::disabled && policy != NotificationPolicy::off;
}

RunRecord newRecord(const SyncUnit& unit, const GoogleAccount& account, const AppConfiguration& configuration,
                    std::int64_t missedRuns, Date now) {
    const NotificationPolicy policy = unit.notificationPolicy();
    RunRecord record = beginRunRecord(unit, account.email, wantsEmail(configuration, policy), now);
    record.emailSettings = configuration.email;
    record.notificationPolicy = policy;
    if (missedRuns >= 1)
        record.missedRuns = missedRuns;
    return record;
}

/// When a unit runs next after a run of it as it was when that began.
std::optional<Date> timeAfter(const RunRecord& record, const SyncUnit& unit, const SyncUnit& stored, Date now,
                              const std::function<Calendar()>& calendar) {
    const bool triesAgainSoon =
        record.outcome == RunOutcome::failed && unit.schedule.frequency != ScheduleFrequency::manual;
    return triesAgainSoon ? now + retryDelay : stored.schedule.next(now, calendar());
}

} // namespace

/// What holds while a run is in progress, and ends with it on every way out.
class AppStore::RunInProgress {
  public:
    explicit RunInProgress(AppStore& store)
        : store_(store), activity_(store.around_.desktop.beginActivity("Finishing a Google Drive backup")) {}
    RunInProgress(const RunInProgress&) = delete;
    RunInProgress& operator=(const RunInProgress&) = delete;
    ~RunInProgress() {
        activity_.reset();
        store_.backupTask_.reset();
        store_.state_.progress.set({});
        store_.state_.activeUnitID.set(std::nullopt);
    }

  private:
    AppStore& store_;
    std::unique_ptr<Activity> activity_;
};

void AppStore::run(const SyncUnit& unit, std::int64_t missedRuns) {
    if (*state_.activeUnitID || !configurationIsReadable_)
        return;
    const GoogleAccount* const account = state_.account(unit.accountID);
    if (!*state_.auth || !around_.rclone || !account) {
        state_.errorMessage.set("Connect this unit’s Google account and install rclone before backing up.");
        return;
    }
    const SyncUnit captured = unit;
    const RunRecord record =
        newRecord(captured, *account, *state_.configuration, missedRuns, around_.clock());
    state_.configuration.change(
        [&](AppConfiguration& current) { current.runs.insert(current.runs.begin(), record); });
    try {
        persist();
    } catch (const std::exception& failure) {
        state_.configuration.change([&](AppConfiguration& current) {
            std::erase_if(current.runs, [&](const RunRecord& run) { return run.id == record.id; });
        });
        report(failure);
        return;
    }
    state_.activeUnitID.set(captured.id);
    state_.progress.set("Preparing snapshot…");
    backupTask_.emplace();
    spawn(backUp(captured, record, backupTask_->get_token()));
}

void AppStore::cancelBackup() {
    if (backupTask_)
        backupTask_->request_stop();
}

asio::awaitable<void> AppStore::backUp(SyncUnit unit, RunRecord record, std::stop_token stop) {
    const RunInProgress inProgress(*this);
    record = co_await attempt(unit, std::move(record), stop);
    finish(record, unit);
    co_await refreshSnapshots();
    co_await passEmails(std::move(stop));
}

asio::awaitable<RunRecord> AppStore::attempt(SyncUnit unit, RunRecord record, std::stop_token stop) {
    try {
        const fs::path folder = co_await destination(unit);
        auto source = around_.makeSource(unit, *state_.auth, *around_.rclone);
        Snapshot snapshot =
            co_await engine_.run(unit, folder, std::move(source), progressOf(), std::move(stop));
        record.outcome = RunOutcome::succeeded;
        record.summary = snapshot.summary;
        record.snapshotID = snapshot.id;
        letGoOn(around_.pool, std::move(snapshot));
        record.detail = co_await cleanUpHistory(unit, folder);
    } catch (const CancellationError&) {
        record.outcome = RunOutcome::cancelled;
        record.detail = "Cancelled before completion. Previously completed snapshots remain available.";
    } catch (const std::exception& failure) {
        record.outcome = RunOutcome::failed;
        record.detail = words(failure);
    }
    co_return record;
}

asio::awaitable<std::optional<std::string>> AppStore::cleanUpHistory(SyncUnit unit, fs::path destination) {
    // A snapshot stands whatever becomes of older ones, so this failure is a remark and no more.
    try {
        co_await engine_.prune(std::move(unit), std::move(destination));
        co_return std::nullopt;
    } catch (const std::exception& failure) {
        co_return "Snapshot completed. History cleanup needs attention: " + words(failure);
    }
}

void AppStore::finish(const RunRecord& finished, const SyncUnit& unit) {
    RunRecord record = finished;
    const Date now = around_.clock();
    record.endedAt = now;
    const SyncUnit* const stored = state_.unit(unit.id);
    std::optional<Date> nextRun = now + retryDelay;
    try {
        if (stored)
            nextRun = timeAfter(record, unit, *stored, now, around_.calendar);
    } catch (const std::exception& failure) {
        report(failure); // a time that cannot be told is no reason not to write down what was done
    }
    state_.configuration.change([&](AppConfiguration& current) {
        const auto kept = std::ranges::find(current.runs, record.id, &RunRecord::id);
        if (kept != current.runs.end())
            *kept = record;
        const auto planned = std::ranges::find(current.units, unit.id, &SyncUnit::id);
        if (planned != current.units.end())
            planned->nextRun = nextRun;
    });
    persistOrReport();
}

Progress AppStore::progressOf() {
    return [weak = weak_from_this(), main = around_.main](std::string line) -> asio::awaitable<void> {
        return onExecutor(main, [weak, line = std::move(line)] {
            if (const auto store = weak.lock())
                store->state_.progress.set(line);
        });
    };
}

asio::awaitable<fs::path> AppStore::destination(SyncUnit unit) {
    if (unit.destinationBookmark.bytes.empty())
        co_return fs::path(unit.destinationPath);
    // A disk that sleeps or a share that is gone may hold this up for long.
    ResolvedBookmark found =
        co_await onExecutor(around_.pool, [&desktop = around_.desktop, bookmark = unit.destinationBookmark] {
            return desktop.resolveBookmark(bookmark);
        });
    if (!found.isStale)
        co_return found.path;
    co_return co_await renewBookmark(std::move(unit), std::move(found.path));
}

asio::awaitable<fs::path> AppStore::renewBookmark(SyncUnit unit, fs::path found) {
    const ByteString fresh = co_await onExecutor(
        around_.pool, [&desktop = around_.desktop, found] { return desktop.makeBookmark(found); });
    // A program that may write nothing down reads the history where it found it.
    if (!configurationIsReadable_ || !state_.unit(unit.id))
        co_return found;
    state_.configuration.change([&](AppConfiguration& current) {
        const auto stored = std::ranges::find(current.units, unit.id, &SyncUnit::id);
        stored->destinationBookmark = fresh;
        stored->destinationPath = validText(found.string());
    });
    persist();
    co_return found;
}

} // namespace marrowbox
