#pragma once

#include "GoogleOAuth/GoogleAuth.h"
#include "Marrowbox/AppStore/Published.h"
#include "Models/AppConfiguration.h"
#include "Models/Snapshot.h"
#include "SnapshotMount/SnapshotMount.h"
#include "StorageUsage/BackupStorageUsage.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace marrowbox {

/// The snapshots of a unit. A long history is large, so it is shared and never copied.
using SnapshotList = std::shared_ptr<const std::vector<Snapshot>>;

/// All that the screens read of the store.
class AppState {
    StoreChanges& changes_;
    using Field = StoreField;

  public:
    explicit AppState(StoreChanges& changes) : changes_(changes) {}

    Published<AppConfiguration> configuration{changes_, Field::configuration}; ///< All that is persisted.
    Published<std::optional<Uuid>> selectedUnitID{changes_, Field::selectedUnitID};
    /// Those of the selected unit, newest first; never null.
    Published<SnapshotList> snapshots{changes_, Field::snapshots,
                                      std::make_shared<const std::vector<Snapshot>>()};
    /// The selected unit's history is being read. Until it has been, no snapshots does not mean that there
    /// are none.
    Published<bool> isReadingHistory{changes_, Field::isReadingHistory};
    Published<BackupStorageUsage> storageUsage{changes_, Field::storageUsage}; ///< Of the selected unit.
    /// Why the selected unit's destination cannot be read.
    Published<std::optional<std::string>> destinationIssue{changes_, Field::destinationIssue};
    Published<std::optional<Uuid>> activeUnitID{changes_, Field::activeUnitID}; ///< Whose backup runs now.
    Published<std::string> progress{changes_, Field::progress};                 ///< Empty when idle.
    /// The latest failure that the user must see; a screen shows it and dismisses it.
    Published<std::optional<std::string>> errorMessage{changes_, Field::errorMessage};
    Published<bool> isConnecting{changes_, Field::isConnecting}; ///< A sign-in is under way.
    Published<bool> isExploring{changes_, Field::isExploring};   ///< A mount or a restore is under way.
    Published<std::map<Uuid, SnapshotMount::Mounted>> mounted{changes_, Field::mounted}; ///< By snapshot.
    Published<std::optional<std::string>> mountIssue{changes_, Field::mountIssue};
    /// Absent while no OAuth client is loaded.
    Published<std::shared_ptr<const GoogleAuth>> auth{changes_, Field::auth};
    Published<std::string> credentialProject{changes_, Field::credentialProject};
    Published<bool> showSettings{changes_, Field::showSettings};
    Published<int> settingsTab{changes_, Field::settingsTab};
    Published<bool> showNewUnit{changes_, Field::showNewUnit};
    /// Ids of the accounts that have a stored credential.
    Published<std::set<std::string>> availableCredentials{changes_, Field::availableCredentials};
    Published<bool> startAtLogin{changes_, Field::startAtLogin};
    Published<bool> loginRequiresApproval{changes_, Field::loginRequiresApproval};

    const SyncUnit* unit(const Uuid& id) const;
    /// The selected unit, if it exists.
    const SyncUnit* selectedUnit() const;
    const GoogleAccount* account(std::string_view id) const;
    /// The selected unit's colour; blue where there is none.
    AccentTheme accent() const;
    /// How many finished runs wait for their mail.
    std::size_t pendingEmails() const;
};

/// Whether the mail of a finished run is still to go out.
bool awaitsEmail(const RunRecord& run);

} // namespace marrowbox
