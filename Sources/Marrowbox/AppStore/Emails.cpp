#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/AppStore/Failure.h"
#include "Models/BackupError.h"
#include "Models/EmailSettingsValidation.h"
#include "Models/NotificationDigest.h"
#include "Platform/Cancellation.h"
#include "Platform/HeldFlag.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace marrowbox {

namespace {

bool isDue(const RunRecord& run, Date now) {
    return awaitsEmail(run) && (!run.nextEmailAttempt || *run.nextEmailAttempt <= now);
}

bool isImmediate(const RunRecord& run) {
    return run.notificationPolicy.value_or(NotificationPolicy::all) == NotificationPolicy::all;
}

bool isDigestDue(const SyncUnit& unit, Date now) {
    return unit.notifications == NotificationPolicy::daily &&
           NotificationDigest::isDue(unit.lastDigestAt, now);
}

bool isForDigest(const RunRecord& run) {
    return run.notificationPolicy == NotificationPolicy::daily;
}

void markSent(RunRecord& run, Date at) {
    run.emailSent = true;
    run.emailSentAt = at;
    run.emailError.reset();
}

void markFailed(RunRecord& run, const std::string& issue, Date at) {
    run.emailError = issue;
    run.emailAttempts += 1;
    run.nextEmailAttempt = at + EmailDelivery::backOff(run.emailAttempts);
}

asio::awaitable<void> composeAndSend(EmailDelivery delivery, std::function<EmailMessage()> compose, Uuid id,
                                     EmailSettings settings, std::vector<GoogleAccount> accounts,
                                     std::stop_token stop) {
    EmailMessage message = compose();
    co_await delivery.send(std::move(message), id, std::move(settings), std::move(accounts), std::move(stop));
}

} // namespace

void AppStore::saveEmail(const EmailSettings& settings) {
    const auto isAvailable = [this](const GoogleAccount& account) {
        return state_.availableCredentials->contains(account.id);
    };
    const auto issue = EmailSettingsValidation::error(settings, state_.configuration->accounts, isAvailable);
    if (issue)
        throw BackupError(*issue);
    const EmailSettings old = state_.configuration->email;
    state_.configuration.change([&](AppConfiguration& current) { current.email = settings; });
    try {
        persist();
    } catch (...) {
        state_.configuration.change([&](AppConfiguration& current) { current.email = old; });
        throw;
    }
}

void AppStore::retryEmails() {
    state_.configuration.change([](AppConfiguration& current) {
        for (RunRecord& run : current.runs)
            if (run.notify && !run.emailSent)
                run.nextEmailAttempt.reset();
    });
    persistOrReport();
    spawn(passEmails({}));
}

asio::awaitable<void> AppStore::passEmails(std::stop_token stop) {
    if (processingEmail_ || !configurationIsReadable_)
        co_return;
    const HeldFlag processing(processingEmail_);
    co_await deliverImmediateEmails(stop);
    co_await deliverDigests(stop);
}

const EmailSettings& AppStore::mailSettings(const RunRecord& run) const {
    return run.emailSettings ? *run.emailSettings : state_.configuration->email;
}

bool AppStore::canMail(const EmailSettings& settings) const {
    return settings.provider == EmailProvider::gmail &&
           state_.availableCredentials->contains(settings.accountID);
}

std::vector<RunRecord> AppStore::runsToMail(Date now) const {
    std::vector<RunRecord> due;
    for (const RunRecord& run : state_.configuration->runs)
        // Those that cannot go out now are left out before they are copied: there may be a year of them.
        if (isImmediate(run) && isDue(run, now) && canMail(mailSettings(run)))
            due.push_back(run);
    return due;
}

asio::awaitable<void> AppStore::deliverImmediateEmails(std::stop_token stop) {
    const std::vector<RunRecord> due = runsToMail(around_.clock());
    for (const RunRecord& run : due) {
        const EmailSettings settings = mailSettings(run);
        if (!canMail(settings))
            continue;
        const auto compose = [run, formats = around_.formats(), now = around_.clock()] {
            return EmailMessage::of(run, formats, now);
        };
        const auto issue = co_await send(compose, run.id, settings, stop);
        if (note({run.id}, issue, around_.clock()))
            persistOrReport();
    }
}

asio::awaitable<std::optional<std::string>> AppStore::send(std::function<EmailMessage()> compose, Uuid id,
                                                           EmailSettings settings, std::stop_token stop) {
    const EmailDelivery delivery{*state_.auth, around_.http, around_.formats(), around_.clock};
    try {
        co_await asio::co_spawn(around_.pool,
                                composeAndSend(delivery, std::move(compose), id, std::move(settings),
                                               state_.configuration->accounts, std::move(stop)),
                                asio::use_awaitable);
        co_return std::nullopt;
    } catch (const CancellationError&) { // the mail did not fail: it waits
        throw;
    } catch (const std::exception& failure) {
        co_return words(failure);
    }
}

bool AppStore::note(const std::set<Uuid>& runs, const std::optional<std::string>& issue, Date sentAt) {
    bool found = false;
    state_.configuration.change([&](AppConfiguration& current) {
        for (RunRecord& run : current.runs) {
            if (!runs.contains(run.id))
                continue;
            found = true;
            if (issue)
                markFailed(run, *issue, around_.clock());
            else
                markSent(run, sentAt);
        }
    });
    return found;
}

asio::awaitable<void> AppStore::deliverDigests(std::stop_token stop) {
    const Date now = around_.clock();
    std::vector<Uuid> ids;
    for (const SyncUnit& unit : state_.configuration->units)
        ids.push_back(unit.id);
    std::set<Uuid> due = unitsWithDigest(now);
    for (const Uuid& id : ids) {
        const SyncUnit* const unit = due.contains(id) ? state_.unit(id) : nullptr;
        if (!unit)
            continue;
        co_await deliverDigest(*unit, now, stop);
        due = unitsWithDigest(now); // the mail took its time, in which a run may have ended or a unit gone
    }
}

std::set<Uuid> AppStore::unitsWithDigest(Date now) const {
    std::set<Uuid> due;
    for (const SyncUnit& unit : state_.configuration->units)
        if (isDigestDue(unit, now))
            due.insert(unit.id);
    if (due.empty())
        return due;
    // One walk through a long history for all units together.
    std::set<Uuid> pending;
    for (const RunRecord& run : state_.configuration->runs)
        if (isForDigest(run) && isDue(run, now))
            pending.insert(run.unitID);
    std::erase_if(due, [&](const Uuid& id) { return !pending.contains(id); });
    return due;
}

std::vector<RunRecord> AppStore::runsForDigest(const Uuid& unitID, Date now) const {
    std::vector<RunRecord> pending;
    for (const RunRecord& run : state_.configuration->runs)
        if (run.unitID == unitID && isForDigest(run) && isDue(run, now))
            pending.push_back(run);
    if (!pending.empty() && !canMail(mailSettings(pending.front())))
        pending.clear();
    return pending;
}

asio::awaitable<void> AppStore::deliverDigest(SyncUnit unit, Date now, std::stop_token stop) {
    std::vector<RunRecord> pending = runsForDigest(unit.id, now);
    if (pending.empty())
        co_return;
    const EmailSettings settings = mailSettings(pending.front());
    const Uuid first = pending.front().id;
    std::set<Uuid> ids;
    for (const RunRecord& run : pending)
        ids.insert(run.id);
    const auto compose = [pending = std::move(pending), name = unit.name, formats = around_.formats()] {
        return EmailMessage::digest(pending, name, formats);
    };
    const auto issue = co_await send(compose, first, settings, std::move(stop));
    note(ids, issue, now);
    if (!issue)
        state_.configuration.change([&](AppConfiguration& current) {
            const auto stored = std::ranges::find(current.units, unit.id, &SyncUnit::id);
            if (stored != current.units.end())
                stored->lastDigestAt = now;
        });
    persistOrReport();
}

} // namespace marrowbox
