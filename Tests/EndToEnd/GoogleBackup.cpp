#include "GoogleBackup.h"

#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Platform/Files.h"
#include "Sandbox/Exports.h"
#include "Support/Children.h"
#include "Support/Thrown.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/use_future.hpp>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <span>

namespace marrowbox::test {

namespace {

/// Makes a folder and gives its path.
fs::path made(const fs::path& path) {
    makeDirectory(path, 0700);
    return path;
}

SyncUnit newUnit() {
    SyncUnit unit;
    unit.id = Uuid::random();
    unit.name = "Test";
    return unit;
}

HTTPSettings throughSandbox(const sandbox::SandboxServer& sandbox, const fs::path& authority) {
    sandbox.writeAuthority(authority);
    HTTPSettings settings;
    settings.certificateFile = authority;
    settings.proxy = sandbox.proxyURL();
    return settings;
}

asio::awaitable<void> note(std::shared_ptr<std::vector<std::string>> texts, std::string text) {
    texts->push_back(std::move(text));
    co_return;
}

/// Whether a file holds exactly these bytes, without keeping a large one in memory.
bool holds(const fs::path& path, const sandbox::Content& content) {
    constexpr std::int64_t piece = 1 << 20;
    if (regularFileSize(path) != content.size())
        return false;
    const auto file = openFile(path, O_RDONLY);
    std::string expected(piece, 0);
    std::string found(piece, 0);
    for (std::int64_t offset = 0; offset < content.size();) {
        const auto wanted = std::min(piece, content.size() - offset);
        const auto count = readSome(file, std::span(found).first(static_cast<std::size_t>(wanted)));
        const auto part = std::span(expected).first(count);
        content.read(offset, part);
        if (count == 0 || !std::ranges::equal(part, std::span(found).first(count)))
            return false;
        offset += static_cast<std::int64_t>(count);
    }
    return true;
}

} // namespace

GoogleBackup::GoogleBackup()
    : unit_(newUnit()), repository_(made(scratch_ / "Destination"), unit_.id),
      credentials_(scratch_ / "Credentials"), session_(throughSandbox(sandbox, scratch_ / "authority.pem")),
      engine_(pool_.get_executor(), systemClock()) {
    made(scratch_ / "temporary");
    repository_.initialize();
    const auto& client = sandbox.identity().client();
    const auto shift = clockShift_;
    auth_ = std::make_shared<GoogleAuth>(
        OAuthClient{client.id, client.secret, client.project}, HTTP(session_, timerWait()), credentials_,
        [shift] { return systemClock()() + *shift; }, pool_.get_executor());
    connect(std::chrono::hours(1));
}

void GoogleBackup::connect(std::chrono::seconds lifetime) {
    const auto issued = sandbox.identity().issueToken(lifetime);
    OAuthToken token;
    token.accessToken = issued.accessToken;
    token.refreshToken = issued.refreshToken;
    token.expiry = systemClock()() + double(lifetime.count());
    token.scope = issued.scope;
    credentials_.save(encodeJSON(token, JSONStyle::compact), "google." + sandbox::Person().sub);
}

ProcessSurroundings GoogleBackup::surroundings() const {
    ProcessSurroundings surroundings;
    surroundings.environment = sandbox.environment(scratch_ / "authority.pem");
    surroundings.environment["HOME"] = scratch_.path();
    surroundings.temporaryFolder = scratch_ / "temporary";
    return surroundings;
}

std::vector<std::string>
GoogleBackup::addFoldersNamed(const std::vector<std::pair<std::string, std::string>>& names) {
    std::vector<std::string> paths;
    for (const auto& [name, component] : names) {
        drive.addFile(drive.addFolder(folder, name), name, "content of " + name);
        paths.push_back(component);
        paths.push_back(component + "/" + component);
    }
    return paths;
}

std::future<Snapshot> GoogleBackup::start(std::stop_token stop) {
    progress_->clear();
    const auto texts = progress_;
    const auto executable = RcloneDriveSource::locate();
    if (!executable)
        throw std::runtime_error("rclone is not installed");
    auto source = std::make_shared<RcloneDriveSource>(DriveAPI{auth_, sandbox::Person().sub}, location,
                                                      *executable, surroundings());
    return asio::co_spawn(pool_,
                          engine_.run(
                              unit_, scratch_ / "Destination", std::move(source),
                              [texts](std::string text) { return note(texts, std::move(text)); },
                              std::move(stop)),
                          asio::use_future);
}

std::string GoogleBackup::refusal() {
    const auto before = repository_.snapshots().size();
    const auto words = thrown<BackupError>([&] { run(); });
    expectSettled(before);
    return words;
}

void GoogleBackup::expectHolds(const Snapshot& snapshot, std::vector<std::string> paths) const {
    std::vector<std::string> found;
    for (const auto& entry : snapshot.entries) {
        found.push_back(entry->source.path.string());
        if (!entry->source.isDirectory)
            EXPECT_TRUE(holds(repository_.objectURL(entry->objectHash.value()), contentOf(*entry)))
                << found.back();
    }
    EXPECT_THAT(found, testing::UnorderedElementsAreArray(paths));
}

sandbox::Content GoogleBackup::contentOf(const SnapshotEntry& entry) const {
    const auto item = drive.item(entry.source.id).value();
    if (!item.isNative())
        return item.content;
    const auto extension = fs::path(entry.source.path.view()).extension().string().substr(1);
    return sandbox::exported(item, *sandbox::exportFormat(item, extension));
}

void GoogleBackup::expectSettled(std::size_t snapshots) const {
    EXPECT_EQ(repository_.snapshots().size(), snapshots);
    EXPECT_THAT(directoryNames(repository_.root() / "Staging"), testing::IsEmpty());
    EXPECT_NO_THROW(repository_.lock());
    EXPECT_THAT(directoryNames(scratch_ / "temporary"), testing::IsEmpty());
    EXPECT_TRUE(hasNoChild());
    EXPECT_THAT(sandbox.failures(), testing::IsEmpty());
}

std::vector<std::string> GoogleBackup::secrets() const {
    const auto token = decodeJSON<OAuthToken>(credentials_.read("google." + sandbox::Person().sub).value());
    return {token.accessToken, token.refreshToken, sandbox::ClientIdentity().secret.value()};
}

std::size_t GoogleBackup::rcloneCalls() {
    // The only one who asks for the root, once a call.
    return sandbox.requests().count(sandbox::metadata("root"));
}

} // namespace marrowbox::test
