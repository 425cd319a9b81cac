#include "Demo/Stage.h"

#include "Models/BackupError.h"
#include "Models/JSONWriter.h"
#include "Platform/Files.h"
#include "Processes/RcloneDriveSource.h"
#include "Repository/BackupRepository.h"

namespace marrowbox::demo {

namespace {

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

ProcessSurroundings surroundingsIn(const sandbox::SandboxServer& sandbox, const fs::path& authority) {
    ProcessSurroundings surroundings = ProcessSurroundings::ofThisProcess();
    for (const auto& [name, value] : sandbox.environment(authority))
        surroundings.environment.insert_or_assign(name, value);
    return surroundings;
}

std::shared_ptr<const GoogleAuth> authorised(sandbox::SandboxServer& sandbox, HTTPSession& session,
                                             const fs::path& credentials, asio::any_io_executor executor) {
    const auto& identity = sandbox.identity().client();
    return std::make_shared<GoogleAuth>(
        OAuthClient{
            .client_id = identity.id, .client_secret = identity.secret, .project_id = identity.project},
        HTTP(session, timerWait()), AppCredentials(credentials), systemClock(), std::move(executor));
}

/// Stores a token as a sign-in would have left it, and gives the account's identifier.
std::string storedAccount(sandbox::SandboxServer& sandbox, const fs::path& credentials) {
    const std::string account = sandbox::Person().sub;
    const auto issued = sandbox.identity().issueToken();
    const OAuthToken token{.accessToken = issued.accessToken,
                           .refreshToken = issued.refreshToken,
                           .expiry = systemClock()() + static_cast<double>(issued.lifetime.count()),
                           .scope = issued.scope};
    AppCredentials(credentials).save(encodeJSON(token, JSONStyle::compact), "google." + account);
    return account;
}

} // namespace

Stage::Stage(const fs::path& folder)
    : authority_(writtenAuthority(sandbox_, folder)), destination_(madeFolder(folder / "destination")),
      pool_(2), session_({.certificateFile = authority_, .proxy = sandbox_.proxyURL()}),
      auth_(authorised(sandbox_, session_, folder / "Credentials", pool_.get_executor())),
      accountID_(storedAccount(sandbox_, folder / "Credentials")),
      surroundings_(surroundingsIn(sandbox_, authority_)), rclone_(locatedRclone()),
      engine_(pool_.get_executor(), systemClock()) {
}

Stage::~Stage() {
    pool_.join();
}

SyncUnit Stage::addUnit(const std::string& name, DriveLocation source) {
    SyncUnit unit;
    unit.id = Uuid::random();
    unit.name = name;
    unit.accountID = accountID_;
    unit.source = std::move(source);
    unit.destinationPath = destination_.string();
    BackupRepository(destination_, unit.id).initialize();
    return unit;
}

fs::path Stage::repository(const SyncUnit& unit) const {
    return BackupRepository(destination_, unit.id).root();
}

asio::awaitable<Snapshot> Stage::backUp(SyncUnit unit, Progress progress, std::stop_token stop) {
    auto source =
        std::make_shared<RcloneDriveSource>(DriveAPI{auth_, accountID_}, unit.source, rclone_, surroundings_);
    return engine_.run(std::move(unit), destination_, std::move(source), std::move(progress),
                       std::move(stop));
}

} // namespace marrowbox::demo
