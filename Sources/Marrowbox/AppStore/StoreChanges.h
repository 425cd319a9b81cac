#pragma once

#include <QObject>

namespace marrowbox {

/// The published fields of the store, by name.
enum class StoreField {
    configuration,
    selectedUnitID,
    snapshots,
    isReadingHistory,
    storageUsage,
    destinationIssue,
    activeUnitID,
    progress,
    errorMessage,
    isConnecting,
    isExploring,
    mounted,
    mountIssue,
    auth,
    credentialProject,
    showSettings,
    settingsTab,
    showNewUnit,
    availableCredentials,
    startAtLogin,
    loginRequiresApproval,
};

/// Tells that a published field changes, on the main thread.
class StoreChanges : public QObject {
    Q_OBJECT
  signals:
    /// The field still has its old value.
    void willChange(marrowbox::StoreField field);
    /// The field has its new value.
    void changed(marrowbox::StoreField field);
};

} // namespace marrowbox
