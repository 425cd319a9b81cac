#include "Demo/Stage.h"

#include "Demo/Volumes.h"
#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Platform/Base64.h"
#include "Platform/Cancellation.h"
#include "Processes/RcloneDriveSource.h"
#include "Repository/BackupRepository.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <iostream>

namespace marrowbox::demo {

namespace {

constexpr double day = 86'400;
constexpr std::chrono::milliseconds endPause(10);

fs::path writtenAuthority(const sandbox::SandboxServer& sandbox, const fs::path& folder) {
    const fs::path file = folder / "authority.pem";
    sandbox.writeAuthority(file);
    return file;
}

/// The client file as Google Cloud lets the user download it.
fs::path writtenClient(sandbox::SandboxServer& sandbox, const fs::path& folder) {
    const auto& identity = sandbox.identity().client();
    const OAuthClient client{
        .client_id = identity.id, .client_secret = identity.secret, .project_id = identity.project};
    const fs::path file = folder / "client_secret.json";
    JSONFile::write(std::map<std::string, OAuthClient>{{"installed", client}}, file);
    return file;
}

fs::path madeFolder(const fs::path& path) {
    makeDirectory(path, 0700);
    return path;
}

ProcessSurroundings surroundingsIn(const sandbox::SandboxServer& sandbox, const fs::path& authority,
                                   const fs::path& folder) {
    madeFolder(folder / "Volumes");
    ProcessSurroundings surroundings = surroundingsBelow(folder);
    for (const auto& [name, value] : sandbox.environment(authority))
        surroundings.environment.insert_or_assign(name, value);
    return surroundings;
}

std::string subjectOf(const std::string& mime) {
    const std::string begin = "Subject: =?UTF-8?B?";
    const std::size_t at = mime.find(begin) + begin.size();
    return base64Decoded(mime.substr(at, mime.find("?=", at) - at)).value_or("");
}

} // namespace

Stage::Stage(const fs::path& folder, int daysAgo)
    : folder_(folder), authority_(writtenAuthority(sandbox_, folder)),
      destination_(madeFolder(folder / "destination")),
      surroundings_(surroundingsIn(sandbox_, authority_, folder)), ahead_(-daysAgo * day),
      main_(asio::make_strand(pool_)),
      session_({.certificateFile = authority_, .proxy = sandbox_.proxyURL()}),
      desktop_(main_, surroundings_, writtenClient(sandbox_, folder), madeFolder(folder / "restored")) {
    sandbox_.identity().setSignIn({.consent = sandbox::ConsentAnswer::page});
    if (!RcloneDriveSource::locate())
        throw BackupError("rclone is not installed. Install the packages of dependencies.apt and try again.");
    store_ = AppStore::start(surroundings());
    QObject::connect(store_.get(), &StoreChanges::changed, [this](StoreField field) {
        if (field == StoreField::progress && !store_->state().progress->empty())
            std::cout << "  " << *store_->state().progress << std::endl;
    });
}

Stage::~Stage() {
    pool_.stop();
    pool_.join();
}

AppSurroundings Stage::surroundings() {
    return {.desktop = desktop_,
            .main = main_,
            .pool = pool_.get_executor(),
            .http = HTTP(session_, timerWait()),
            .mountMachine = MountMachine::live(surroundings_),
            .makeSource =
                [this](const SyncUnit& unit, std::shared_ptr<const GoogleAuth> auth, const fs::path& rclone) {
                    return std::make_shared<RcloneDriveSource>(DriveAPI{std::move(auth), unit.accountID},
                                                               unit.source, rclone, surroundings_);
                },
            .environment = {{"MARROW_DATA_DIR", folder_.string()}},
            .rclone = RcloneDriveSource::locate(),
            .bundledClient = std::nullopt,
            .clock = [this, machine = systemClock()] { return machine() + ahead_.load(); }};
}

asio::awaitable<void> Stage::until(std::function<bool()> holds, std::stop_token stop) {
    auto change = std::make_shared<asio::steady_timer>(main_, asio::steady_timer::time_point::max());
    const auto connection =
        QObject::connect(store_.get(), &StoreChanges::changed, [change](StoreField) { change->cancel(); });
    {
        const std::stop_callback onStop(stop, [this] { asio::post(main_, [this] { cancelAll(); }); });
        while (!holds()) {
            boost::system::error_code ended;
            co_await change->async_wait(asio::redirect_error(asio::use_awaitable, ended));
        }
    }
    QObject::disconnect(connection);
    throwIfCancelled(stop);
}

void Stage::cancelAll() {
    if (!store_)
        return;
    store_->cancelSignIn();
    store_->cancelBackup();
    store_->cancelExploring();
}

void Stage::throwError() {
    const auto message = *store_->state().errorMessage;
    if (!message)
        return;
    store_->dismissError();
    throw BackupError(*message);
}

asio::awaitable<void> Stage::importClient(std::stop_token stop) {
    const AppState& state = store_->state();
    store_->importClient();
    co_await until([&state] { return state.configuration->usesImportedClient || *state.errorMessage; },
                   std::move(stop));
    throwError();
}

asio::awaitable<std::string> Stage::signIn(std::stop_token stop) {
    co_await importClient(stop);
    const AppState& state = store_->state();
    desktop_.closeBrowserOn(stop);
    store_->connect(true, std::nullopt);
    co_await until([this, &state] { return desktop_.browser() || !*state.isConnecting; }, stop);
    const auto browser = desktop_.browser();
    if (!browser)
        throwError();
    // A browser that failed has given the sign-in up, and knows the reason.
    std::string page = co_await browser->lastPage();
    co_await until([&state] { return !*state.isConnecting; }, stop);
    throwError();
    co_return page;
}

asio::awaitable<SyncUnit> Stage::addUnit(std::string name, DriveLocation source, std::stop_token stop) {
    SyncUnit unit;
    unit.id = Uuid::random();
    unit.name = std::move(name);
    unit.accountID = account().id;
    unit.source = std::move(source);
    unit.destinationPath = destination_.string();
    unit.schedule = {.frequency = ScheduleFrequency::daily, .hour = 9};
    unit = withFirstRun(std::move(unit), store_->surroundings().clock(), Calendar::current());
    co_await store_->addUnit(unit, destination_);
    co_await finishedRun(unit.id, std::nullopt, std::move(stop));
    co_return unit;
}

fs::path Stage::repository(const SyncUnit& unit) const {
    return BackupRepository(destination_, unit.id).root();
}

void Stage::sleep(int days) {
    ahead_ = ahead_.load() + days * day;
}

const RunRecord* Stage::lastRun(const Uuid& unitID) const {
    const auto& runs = store_->state().configuration->runs;
    const auto found = std::ranges::find(runs, unitID, &RunRecord::unitID);
    return found == runs.end() ? nullptr : &*found;
}

asio::awaitable<RunRecord> Stage::scheduledBackup(SyncUnit unit, std::stop_token stop) {
    const RunRecord* const last = lastRun(unit.id);
    const std::optional<Uuid> before = last ? std::optional(last->id) : std::nullopt;
    desktop_.wake();
    return finishedRun(unit.id, before, std::move(stop));
}

asio::awaitable<RunRecord> Stage::finishedRun(Uuid unitID, std::optional<Uuid> before, std::stop_token stop) {
    const auto isFinished = [this, unitID, before] {
        const RunRecord* const run = lastRun(unitID);
        return (run && run->id != before && !*store_->state().activeUnitID) || *store_->state().errorMessage;
    };
    co_await until(isFinished, std::move(stop));
    throwError();
    const RunRecord run = *lastRun(unitID);
    if (run.outcome != RunOutcome::succeeded || run.detail)
        throw BackupError(run.detail.value_or("The backup did not succeed."));
    co_return run;
}

asio::awaitable<SnapshotList> Stage::history(SyncUnit unit, std::stop_token stop) {
    const AppState& state = store_->state();
    store_->select(unit.id);
    co_await until([&state] { return !*state.isReadingHistory; }, std::move(stop));
    if (*state.destinationIssue)
        throw BackupError(**state.destinationIssue);
    co_return *state.snapshots;
}

void Stage::keepHistory(const SyncUnit& unit, std::int64_t days) {
    SyncUnit changed = *store_->state().unit(unit.id);
    changed.retentionDays = days;
    store_->updateUnit(changed);
}

asio::awaitable<fs::path> Stage::restore(Snapshot snapshot, SyncUnit unit, std::stop_token stop) {
    const AppState& state = store_->state();
    store_->select(unit.id);
    store_->restore(snapshot);
    bool hasBegun = false;
    co_await until(
        [&state, &hasBegun] {
            hasBegun = hasBegun || *state.isExploring;
            return hasBegun && !*state.isExploring;
        },
        std::move(stop));
    throwError();
    co_return desktop_.shownFolders().back();
}

asio::awaitable<MountedSnapshot> Stage::mount(Snapshot snapshot, SyncUnit unit, std::stop_token stop) {
    const AppState& state = store_->state();
    store_->select(unit.id);
    store_->explore(snapshot);
    co_await until([&state] { return !*state.isExploring; }, std::move(stop));
    if (!state.mounted->contains(snapshot.id))
        throw BackupError(state.mountIssue->value_or("The snapshot was not mounted."));
    co_return state.mounted->at(snapshot.id);
}

asio::awaitable<void> Stage::eject(MountedSnapshot mounted, std::stop_token stop) {
    const AppState& state = store_->state();
    const Wait wait = timerWait();
    // Something on the machine may look at a new volume for a moment; a person would try again.
    for (int attempt = 0; attempt < ejectAttempts && state.mounted->contains(mounted.id); ++attempt) {
        bool isAnswered = false;
        const auto connection =
            QObject::connect(store_.get(), &StoreChanges::changed, [&isAnswered](StoreField field) {
                isAnswered = isAnswered || field == StoreField::mountIssue;
            });
        store_->eject(mounted.id);
        co_await until([&isAnswered] { return isAnswered; }, stop);
        QObject::disconnect(connection);
        if (state.mounted->contains(mounted.id))
            co_await wait(ejectPause, stop);
    }
    if (state.mounted->contains(mounted.id))
        throw BackupError(state.mountIssue->value_or("The volume was not ejected."));
}

std::vector<std::string> Stage::mailSubjects() const {
    std::vector<std::string> subjects;
    for (const sandbox::SentMail& mail : sandbox_.mail())
        subjects.push_back(subjectOf(mail.mime));
    return subjects;
}

asio::awaitable<void> Stage::windDown() {
    cancelAll();
    const AppState& state = store_->state();
    co_await until([&state] { return !*state.activeUnitID && !*state.isExploring && !*state.isConnecting; },
                   {});
    const std::weak_ptr<AppStore> ending = store_;
    store_.reset();
    const Wait wait = timerWait();
    while (!ending.expired()) // what it read last on the pool holds it
        co_await wait(endPause, {});
    sandbox_.identity().setSignIn({.consent = sandbox::ConsentAnswer::granted});
}

} // namespace marrowbox::demo
