#include "Demo/Stage.h"

#include "Demo/SigningIn.h"
#include "Models/BackupError.h"
#include "Platform/Files.h"
#include "Processes/RcloneDriveSource.h"
#include "Repository/BackupRepository.h"

namespace marrowbox::demo {

namespace {

/// How often, and after how long, an eject is tried again.
constexpr int attempts = 100;
constexpr std::chrono::milliseconds pause(50);

fs::path writtenAuthority(const sandbox::SandboxServer& sandbox, const fs::path& folder) {
    const fs::path file = folder / "authority.pem";
    sandbox.writeAuthority(file);
    return file;
}

fs::path madeFolder(const fs::path& path) {
    makeDirectory(path, 0700);
    return path;
}

fs::path locatedRclone() {
    const auto found = RcloneDriveSource::locate();
    if (!found)
        throw BackupError("rclone is not installed. Install the packages of dependencies.apt and try again.");
    return *found;
}

/// The user's own, but that volumes appear below the stage's folder.
ProcessSurroundings surroundingsBelow(const fs::path& folder) {
    ProcessSurroundings surroundings = ProcessSurroundings::ofThisProcess();
    surroundings.environment.insert_or_assign("XDG_RUNTIME_DIR", folder / "Volumes");
    return surroundings;
}

ProcessSurroundings surroundingsIn(const sandbox::SandboxServer& sandbox, const fs::path& authority,
                                   const fs::path& folder) {
    madeFolder(folder / "Volumes");
    ProcessSurroundings surroundings = surroundingsBelow(folder);
    for (const auto& [name, value] : sandbox.environment(authority))
        surroundings.environment.insert_or_assign(name, value);
    return surroundings;
}

OAuthClient clientOf(sandbox::SandboxServer& sandbox) {
    const auto& identity = sandbox.identity().client();
    return {.client_id = identity.id, .client_secret = identity.secret, .project_id = identity.project};
}

/// Absent when the volume is gone.
asio::awaitable<std::optional<std::string>> refusalToEject(SnapshotMount& mounts, MountedSnapshot mounted) {
    try {
        co_await mounts.unmount(std::move(mounted), {});
    } catch (const std::exception& failure) {
        co_return failure.what();
    }
    co_return std::nullopt;
}

fs::path registryIn(const fs::path& folder) {
    return folder / "MountedSnapshots";
}

} // namespace

Stage::Stage(const fs::path& folder)
    : folder_(folder), authority_(writtenAuthority(sandbox_, folder)),
      destination_(madeFolder(folder / "destination")),
      surroundings_(surroundingsIn(sandbox_, authority_, folder)), pool_(2),
      session_({.certificateFile = authority_, .proxy = sandbox_.proxyURL()}), http_(session_, timerWait()),
      auth_(std::make_shared<GoogleAuth>(clientOf(sandbox_), http_, AppCredentials(folder / "Credentials"),
                                         systemClock(), pool_.get_executor())),
      rclone_(locatedRclone()), engine_(pool_.get_executor(), systemClock()),
      mounts_(pool_.get_executor(), registryIn(folder), MountMachine::live(surroundings_)) {
    sandbox_.identity().setSignIn({.consent = sandbox::ConsentAnswer::page});
}

Stage::~Stage() {
    pool_.join();
}

asio::awaitable<GoogleAccount> Stage::signIn(std::stop_token stop) {
    OAuthToken token = co_await signedIn(pool_.get_executor(), http_, surroundings_, auth_->client(), stop);
    GoogleAccount account = co_await auth_->save(std::move(token), stop);
    co_return account;
}

SyncUnit Stage::addUnit(const GoogleAccount& account, const std::string& name, DriveLocation source) {
    SyncUnit unit;
    unit.id = Uuid::random();
    unit.name = name;
    unit.accountID = account.id;
    unit.source = std::move(source);
    unit.destinationPath = destination_.string();
    BackupRepository(destination_, unit.id).initialize();
    return unit;
}

fs::path Stage::repository(const SyncUnit& unit) const {
    return BackupRepository(destination_, unit.id).root();
}

asio::awaitable<Snapshot> Stage::backUp(SyncUnit unit, Progress progress, std::stop_token stop) {
    auto source = std::make_shared<RcloneDriveSource>(DriveAPI{auth_, unit.accountID}, unit.source, rclone_,
                                                      surroundings_);
    return engine_.run(std::move(unit), destination_, std::move(source), std::move(progress),
                       std::move(stop));
}

asio::awaitable<fs::path> Stage::restore(Snapshot snapshot, SyncUnit unit, std::string name,
                                         std::stop_token stop) {
    const fs::path target = folder_ / "restored" / name;
    makeDirectories(target.parent_path(), 0700);
    co_await engine_.restore(std::move(snapshot), std::move(unit), destination_, target, std::move(stop));
    co_return target;
}

asio::awaitable<MountedSnapshot> Stage::mount(Snapshot snapshot, SyncUnit unit, std::stop_token stop) {
    return mounts_.mount(std::move(snapshot), std::move(unit), destination_, std::move(stop));
}

asio::awaitable<void> Stage::eject(MountedSnapshot mounted, std::stop_token stop) {
    const Wait wait = timerWait();
    // Something on the machine may look at a new volume for a moment; a person would try again.
    for (int attempt = 1; attempt < attempts; ++attempt) {
        const auto refusal = co_await refusalToEject(mounts_, mounted);
        if (!refusal)
            co_return;
        co_await wait(pause, stop);
    }
    co_await mounts_.unmount(mounted, stop);
}

asio::awaitable<std::optional<std::string>> Stage::clearVolumes(fs::path folder) {
    const auto executor = co_await asio::this_coro::executor;
    SnapshotMount mounts(executor, registryIn(folder), MountMachine::live(surroundingsBelow(folder)));
    const Wait wait = timerWait();
    std::optional<std::string> issue;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const auto found = co_await mounts.reconcile({});
        issue = found.issue;
        if (found.mounted.empty() && !issue)
            co_return std::nullopt;
        for (const MountedSnapshot& mounted : found.mounted)
            issue = co_await refusalToEject(mounts, mounted);
        if (issue)
            co_await wait(pause, {});
    }
    co_return issue;
}

} // namespace marrowbox::demo
