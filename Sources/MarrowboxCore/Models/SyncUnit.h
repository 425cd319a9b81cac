#pragma once

#include "Models/AccentTheme.h"
#include "Models/BackupSchedule.h"
#include "Models/ByteString.h"
#include "Models/DriveLocation.h"
#include "Models/NotificationPolicy.h"
#include "Models/Uuid.h"
#include "Platform/Clock.h"

#include <boost/describe/class.hpp>
#include <cstdint>
#include <optional>
#include <string>

namespace marrowbox {

/// One backup: what, where to, and when.
struct SyncUnit {
    Uuid id; ///< Names the repository folder.
    std::string name;
    std::string accountID;
    DriveLocation source;
    std::string destinationPath;    ///< As shown to the user.
    ByteString destinationBookmark; ///< Reopens the destination.
    BackupSchedule schedule;
    std::optional<std::int64_t> retentionDays; ///< Absent or less than 1 keeps history for ever.
    std::optional<bool> isEnabled;             ///< A switch of older versions, absent on new units.
    std::optional<Date> nextRun;
    std::optional<AccentTheme> theme;
    std::optional<NotificationPolicy> notifications;
    std::optional<Date> lastDigestAt;

    NotificationPolicy notificationPolicy() const { return notifications.value_or(NotificationPolicy::all); }
    AccentTheme accent() const { return theme.value_or(AccentTheme::blue); }

    friend bool operator==(const SyncUnit&, const SyncUnit&) = default;
};

BOOST_DESCRIBE_STRUCT(SyncUnit, (),
                      (id, name, accountID, source, destinationPath, destinationBookmark, schedule,
                       retentionDays, isEnabled, nextRun, theme, notifications, lastDigestAt))

/// A new unit as the user describes it, due by its schedule from now on: nextRun is set, isEnabled and
/// lastDigestAt are left absent.
SyncUnit withFirstRun(SyncUnit described, Date now, const Calendar& calendar);

} // namespace marrowbox
