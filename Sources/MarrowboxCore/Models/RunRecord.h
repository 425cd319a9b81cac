#pragma once

#include "Models/EmailSettings.h"
#include "Models/NotificationPolicy.h"
#include "Models/RunSummary.h"
#include "Models/SyncUnit.h"
#include "Models/Uuid.h"
#include "Platform/Clock.h"

#include <boost/describe/class.hpp>
#include <boost/describe/enum.hpp>
#include <cstdint>
#include <optional>
#include <string>

namespace marrowbox {

/// How a run ended. It moves once, from running to one of the others.
enum class RunOutcome { running, succeeded, failed, cancelled, interrupted };
BOOST_DESCRIBE_ENUM(RunOutcome, running, succeeded, failed, cancelled, interrupted)

/// One line of the run log. It copies what it needs of the unit and the settings, so that it still makes
/// sense after these have changed or gone.
struct RunRecord {
    Uuid id;
    Uuid unitID;
    std::string unitName;
    std::string accountEmail;
    std::string destination;
    Date startedAt;
    std::optional<Date> endedAt;
    RunOutcome outcome = RunOutcome::running;
    RunSummary summary;
    std::optional<std::string> detail; ///< Text for the user, such as the error.
    std::optional<Uuid> snapshotID;
    bool emailSent = false;
    std::optional<Date> emailSentAt;
    std::optional<std::string> emailError;
    std::int64_t emailAttempts = 0;
    std::optional<Date> nextEmailAttempt;
    bool notify = false; ///< Whether an email is due for this run at all.
    std::optional<EmailSettings> emailSettings;
    std::optional<std::int64_t> missedRuns; ///< Scheduled runs that this run catches up on.
    std::optional<NotificationPolicy> notificationPolicy;

    friend bool operator==(const RunRecord&, const RunRecord&) = default;
};

BOOST_DESCRIBE_STRUCT(RunRecord, (),
                      (id, unitID, unitName, accountEmail, destination, startedAt, endedAt, outcome, summary,
                       detail, snapshotID, emailSent, emailSentAt, emailError, emailAttempts,
                       nextEmailAttempt, notify, emailSettings, missedRuns, notificationPolicy))

/// The record of a run that begins now.
RunRecord beginRunRecord(const SyncUnit& unit, std::string accountEmail, bool notify, Date now);

} // namespace marrowbox
