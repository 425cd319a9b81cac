#pragma once

#include "Credentials/AppCredentials.h"
#include "Email/EmailDelivery.h"
#include "GoogleOAuth/GoogleSignIn.h"
#include "Marrowbox/AppStore/AppState.h"
#include "Marrowbox/AppStore/AppSurroundings.h"
#include "Repository/BackupEngine.h"
#include "Repository/RepositoryLock.h"

#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace marrowbox {

/// The program's spine: the one long-lived object that owns the configuration, the clock of the schedule and
/// all work that a person or the schedule asks for. Screens read its state, which tells of every change, and
/// call its operations.
///
/// Everything here is called on the main executor and returns at once; slow work runs on the pool and comes
/// back to publish. Operations report through the state's errorMessage unless they say that they throw.
/// Work in progress keeps the store alive; timers and events do not.
class AppStore : public StoreChanges, public std::enable_shared_from_this<AppStore> {
    struct Start {};

  public:
    /// Makes the store and brings it up. A failure of that is shown in errorMessage; the store then neither
    /// writes nor schedules until the program starts again.
    static std::shared_ptr<AppStore> start(AppSurroundings surroundings);
    AppStore(Start, AppSurroundings surroundings);

    const AppState& state() const { return state_; }
    const fs::path& dataDirectory() const { return dataDirectory_; }
    /// False when the configuration could not be read, or another copy of the program holds the data folder.
    bool configurationIsReadable() const { return configurationIsReadable_; }

    // What screens set.
    void select(std::optional<Uuid> unitID);
    void dismissError();
    void showSettings(bool shown);
    void showSettingsTab(int tab);
    void showNewUnit(bool shown);

    /// Writes the configuration, and waits until its content is on stable storage. Throws BackupError when it
    /// must not be written, and the system's failures.
    void persist();

    // The schedule and runs.
    /// One step of the schedule: starts at most one backup and one email pass.
    void tick();
    /// Starts a backup, unless one is running.
    void run(const SyncUnit& unit, std::int64_t missedRuns);
    void cancelBackup();
    /// The folder that holds a unit's repository. Resolving its bookmark may move the unit's path along.
    /// Throws what the desktop and persist() do.
    asio::awaitable<fs::path> destination(SyncUnit unit);

    // Accounts, units, the client, the login item.
    /// Signs an account in, a known one again where one is given. With email, also asks for leave to send.
    /// Without a client it asks for the client's file instead.
    void connect(bool email, std::optional<GoogleAccount> account);
    void cancelSignIn();
    void removeAccount(const GoogleAccount& account);
    /// Makes the unit's repository, adds the unit and starts its first backup. Throws.
    asio::awaitable<void> addUnit(SyncUnit unit, fs::path destination);
    void updateUnit(SyncUnit unit);
    void removeUnit(const SyncUnit& unit);
    void importClient();
    void useBundledClient();
    bool hasBundledClient() const { return around_.bundledClient.has_value(); }
    void refreshCredentialAvailability();
    void setLogin(bool enabled);

    // Snapshots.
    /// Reads the selected unit's history anew. Never throws.
    asio::awaitable<void> refreshSnapshots();
    /// The same, with nobody waiting.
    void reloadSnapshots();
    void explore(const Snapshot& snapshot);
    void openMounted(const Uuid& id);
    void eject(const Uuid& id);
    void restore(const Snapshot& snapshot);
    void cancelExploring();
    void scheduleMountReconcile();

    // Email.
    /// Throws BackupError when the settings cannot work, and what persist() does; nothing changes then.
    void saveEmail(const EmailSettings& settings);
    void retryEmails();

    /// What the new-backup sheet and the account screens need of the surroundings.
    const AppSurroundings& surroundings() const { return around_; }

  private:
    class RunInProgress;

    /// Starts work that keeps the store alive to its end. What it throws is reported.
    void spawn(asio::awaitable<void> work);
    /// Starts work that knows the store weakly, and that a cancellation ends without a word.
    void spawnWeakly(asio::awaitable<void> work);
    void report(const std::exception& failure);
    /// Throws BackupError when nothing of the program's own may be written, credentials and client included:
    /// they may belong to another copy of the program, or to a later version.
    void requireWritable() const;
    void persistOrReport();
    void synchronizeNames();
    asio::awaitable<void> waitForTheDisk();

    void bringUp();
    void load();
    void recoverInterruptedRuns();
    void migrateSwitches();
    void loadClientAtStart();
    void loadClient(const fs::path& file);
    void publishClient(const OAuthClient& client);
    void readLoginItem();
    void readLoginItemAtStart();
    void observeDesktop();
    asio::awaitable<void> settle();
    static asio::awaitable<void> keepTime(std::weak_ptr<AppStore> store, Wait wait);
    static asio::awaitable<void> reconcileTwice(std::weak_ptr<AppStore> store, Wait wait);

    void runDueUnit();
    const SyncUnit* firstDueUnit(Date now) const;
    asio::awaitable<void> backUp(SyncUnit unit, RunRecord record, std::stop_token stop);
    asio::awaitable<RunRecord> attempt(SyncUnit unit, RunRecord record, std::stop_token stop);
    asio::awaitable<std::optional<std::string>> cleanUpHistory(SyncUnit unit, fs::path destination);
    void finish(const RunRecord& record, const SyncUnit& unit);
    Progress progressOf();
    asio::awaitable<fs::path> renewBookmark(SyncUnit unit, fs::path found);

    asio::awaitable<void> signIn(bool email, std::optional<GoogleAccount> account, std::stop_token stop);
    void addAccount(const GoogleAccount& account, bool email);
    asio::awaitable<void> chooseClient();
    void adoptClient(const fs::path& file);
    asio::awaitable<void> refreshAndBackUp(SyncUnit unit);

    struct History;
    static History readHistory(const fs::path& destination, const Uuid& unitID);
    /// Shows another unit, with nothing of its history yet; false when it is shown already.
    bool moveSelection(std::optional<Uuid> unitID);
    void publishHistory(History history, std::optional<std::string> issue);
    class HistoryReading;
    asio::awaitable<void> readSelectedHistory(std::unique_ptr<HistoryReading> reading);
    asio::awaitable<void> mount(Snapshot snapshot, SyncUnit unit, std::stop_token stop);
    void publishMountResult(std::optional<std::string> issue);
    asio::awaitable<void> openValidated(Uuid id);
    asio::awaitable<void> unmount(SnapshotMount::Mounted mounted);
    asio::awaitable<void> chooseAndRestore(Snapshot snapshot, SyncUnit unit);
    asio::awaitable<void> restoreInto(fs::path folder, Snapshot snapshot, SyncUnit unit,
                                      std::stop_token stop);
    void take(const SnapshotMount::Reconciliation& found);
    static asio::awaitable<void> requestReconcile(std::weak_ptr<AppStore> store, Wait wait,
                                                  std::stop_token stop);
    asio::awaitable<void> reconcileMounts();

    /// Sends what is due, unless that is being done. A stop leaves unsent mail as it is.
    asio::awaitable<void> passEmails(std::stop_token stop);
    asio::awaitable<void> deliverImmediateEmails(std::stop_token stop);
    asio::awaitable<void> deliverDigests(std::stop_token stop);
    std::set<Uuid> unitsWithDigest(Date now) const;
    std::vector<RunRecord> runsToMail(Date now) const;
    const EmailSettings& mailSettings(const RunRecord& run) const;
    bool canMail(const EmailSettings& settings) const;
    asio::awaitable<void> deliverDigest(SyncUnit unit, Date now, std::stop_token stop);
    std::vector<RunRecord> runsForDigest(const Uuid& unitID, Date now) const;
    asio::awaitable<std::optional<std::string>> send(std::function<EmailMessage()> compose, Uuid id,
                                                     EmailSettings settings, std::stop_token stop);
    /// Writes down what became of the mail about these runs; false when none of them is there any more.
    bool note(const std::set<Uuid>& runs, const std::optional<std::string>& issue, Date sentAt);

    AppSurroundings around_;
    AppState state_{*this};
    fs::path dataDirectory_;
    AppCredentials credentials_;
    BackupEngine engine_;
    SnapshotMount mounts_;
    GoogleSignIn googleSignIn_;
    std::optional<std::stop_source> backupTask_;
    std::optional<std::stop_source> signInTask_;
    std::optional<std::stop_source> exploreTask_;
    int historyReaders_ = 0;
    bool processingEmail_ = false;
    bool isChoosing_ = false; ///< The user looks at a chooser of files or folders.
    bool isSynchronizing_ = false;
    bool synchronizesAgain_ = false;
    int refreshes_ = 0;
    bool configurationIsReadable_ = true;
    std::optional<RepositoryLock> lifetimeLock_;
    std::optional<std::stop_source> reconcileTask_;
    bool reconciling_ = false;
    bool reconcileQueued_ = false;
    std::optional<std::string> operationMountIssue_;
};

} // namespace marrowbox
