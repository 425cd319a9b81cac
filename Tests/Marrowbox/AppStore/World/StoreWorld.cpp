#include "StoreWorld.h"

#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Platform/Base64.h"
#include "Platform/Cancellation.h"
#include "Repository/BackupRepository.h"
#include "SnapshotMount/HdiutilTool.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

constexpr const char* clientFile =
    R"({"installed":{"client_id":"marrowbox.apps.googleusercontent.com","client_secret":"secret","project_id":"Bundled project"}})";

asio::awaitable<HTTPResponse> taken() {
    co_return HTTPResponse{.status = 200, .body = "{}"};
}

/// The message inside the JSON of a send.
std::string messageIn(const HTTPRequest& request) {
    const std::string begin = R"({"raw":")";
    std::string encoded =
        request.body.substr(begin.size(), request.body.find('"', begin.size()) - begin.size());
    std::ranges::replace(encoded, '-', '+');
    std::ranges::replace(encoded, '_', '/');
    encoded.append((4 - encoded.size() % 4) % 4, '=');
    return base64Decoded(encoded).value();
}

std::string headerOf(const std::string& message, const std::string& name) {
    const std::size_t at = message.find(name) + name.size();
    return message.substr(at, message.find("\r\n", at) - at);
}

std::string subjectOf(const std::string& message) {
    const std::string begin = "Subject: =?UTF-8?B?";
    const std::size_t at = message.find(begin) + begin.size();
    return base64Decoded(message.substr(at, message.find("?=", at) - at)).value();
}

} // namespace

/// The world's source, behind a gate.
class StoreWorld::HeldSource final : public BackupSource {
  public:
    explicit HeldSource(StoreWorld& world) : world_(world), source_(world.source) {}

    asio::awaitable<std::vector<SourceEntry>> inventory(std::stop_token stop) override {
        if (world_.sourcesAreHeld_) {
            auto gate = std::make_shared<asio::steady_timer>(world_.time.context(),
                                                             asio::steady_timer::time_point::max());
            world_.sourceGate_ = gate;
            const std::stop_callback onStop(stop, [gate] { gate->cancel(); });
            boost::system::error_code ended;
            co_await gate->async_wait(asio::redirect_error(asio::use_awaitable, ended));
        }
        throwIfCancelled(stop);
        co_return co_await source_->inventory(stop);
    }
    asio::awaitable<void> download(std::vector<SourceEntry> entries, fs::path folder,
                                   std::stop_token stop) override {
        return source_->download(std::move(entries), std::move(folder), std::move(stop));
    }

  private:
    StoreWorld& world_;
    std::shared_ptr<ScriptedSource> source_;
};

StoreWorld::StoreWorld() : bundledClient(home / "BundledClient.json") {
    fs::create_directory(disk);
    writeAll(openFile(*bundledClient, O_WRONLY | O_CREAT), clientFile);
    source->put("Letter.txt", "Dear Anna");
}

StoreWorld::~StoreWorld() {
    end();
}

void StoreWorld::write(const AppConfiguration& configuration) {
    makeDirectories(data, 0700);
    JSONFile::write(configuration, data / "Configuration.json");
}

AppConfiguration StoreWorld::written() const {
    return JSONFile::read<AppConfiguration>(data / "Configuration.json");
}

void StoreWorld::addCredential(const GoogleAccount& account) {
    makeDirectories(data, 0700);
    const OAuthToken token{.accessToken = "access",
                           .refreshToken = "refresh",
                           .expiry = time.now() + 1e9,
                           .scope = "https://www.googleapis.com/auth/drive.readonly "
                                    "https://www.googleapis.com/auth/gmail.send"};
    AppCredentials(data / "Credentials").save(encodeJSON(token, JSONStyle::compact), "google." + account.id);
}

void StoreWorld::removeCredential(const GoogleAccount& account) {
    AppCredentials(data / "Credentials").remove("google." + account.id);
}

AppSurroundings StoreWorld::surroundings() {
    const HTTPSend send = [this](std::shared_ptr<const HTTPRequest> request,
                                 std::stop_token stop) -> asio::awaitable<HTTPResponse> {
        requests.push_back(*request);
        return web ? web(std::move(request), std::move(stop)) : taken();
    };
    const auto images = std::make_shared<HdiutilTool>(machine);
    return {.desktop = desktop,
            .main = time.context().get_executor(),
            .pool = time.context().get_executor(),
            .http = HTTP(send, time.wait()),
            .mountMachine = {.system = machine, .images = images, .localTime = systemLocalTime()},
            .makeSource = [this](const SyncUnit&, std::shared_ptr<const GoogleAuth>,
                                 const fs::path&) { return std::make_shared<HeldSource>(*this); },
            .environment = environment,
            .rclone = rclone,
            .bundledClient = bundledClient,
            .clock = time.clock(),
            .wait = time.wait(),
            .calendar = [this] { return Calendar(zone, "en_US"); },
            .formats = [this] { return Formats(zone, "en_US"); }};
}

AppStore& StoreWorld::begin() {
    store = AppStore::start(surroundings());
    return *store;
}

AppStore& StoreWorld::start() {
    begin();
    time.settle();
    return *store;
}

AppStore& StoreWorld::startWith(const AppConfiguration& configuration) {
    write(configuration);
    return start();
}

void StoreWorld::end() {
    store.reset();
    // Whatever holds a timer goes before the context that it waits on.
    sourceGate_.reset();
    machine->releaseAll();
    web = nullptr;
    time.abandon();
}

void StoreWorld::finish(asio::awaitable<void> work) {
    bool isDone = false;
    std::exception_ptr failure;
    asio::co_spawn(time.context(), std::move(work), [&](std::exception_ptr thrown) {
        isDone = true;
        failure = thrown;
    });
    time.settle();
    EXPECT_TRUE(isDone);
    if (failure)
        std::rethrow_exception(failure);
}

void StoreWorld::letSourcesGo() {
    sourcesAreHeld_ = false;
    if (sourceGate_)
        sourceGate_->cancel();
    time.settle();
}

void StoreWorld::startHeldRun() {
    holdSources();
    store->run(unit(), 0);
    time.settle();
}

std::vector<std::string> StoreWorld::mailRecipients() const {
    std::vector<std::string> recipients;
    for (const HTTPRequest& request : requests)
        if (request.url.ends_with("/messages/send"))
            recipients.push_back(headerOf(messageIn(request), "To: "));
    return recipients;
}

std::vector<std::string> StoreWorld::mailSubjects() const {
    std::vector<std::string> subjects;
    for (const HTTPRequest& request : requests)
        if (request.url.ends_with("/messages/send"))
            subjects.push_back(subjectOf(messageIn(request)));
    return subjects;
}

GoogleAccount anna() {
    return {.id = "anna", .email = "anna@example.org", .name = "Anna", .canSendEmail = true};
}

SyncUnit dailyUnit(const StoreWorld& world, const std::string& name) {
    SyncUnit unit;
    unit.id = Uuid::random();
    unit.name = name;
    unit.accountID = anna().id;
    unit.source = {.id = "root", .name = "My Drive"};
    unit.destinationPath = world.disk.string();
    unit.schedule = {.frequency = ScheduleFrequency::daily, .hour = 9};
    unit.nextRun = unit.schedule.next(world.time.now(), Calendar(world.zone, "en_US"));
    return unit;
}

AppConfiguration oneUnit(StoreWorld& world) {
    world.addCredential(anna());
    const SyncUnit unit = dailyUnit(world);
    BackupRepository(world.disk, unit.id).initialize();
    return {.accounts = {anna()}, .units = {unit}};
}

RunRecord mailedRun(const SyncUnit& unit, Date endedAt) {
    RunRecord run = beginRunRecord(unit, anna().email, true, endedAt - 60);
    run.endedAt = endedAt;
    run.outcome = RunOutcome::succeeded;
    run.emailSettings = mailToAnna();
    run.notificationPolicy = unit.notificationPolicy();
    return run;
}

EmailSettings mailToAnna() {
    return {.provider = EmailProvider::gmail, .accountID = anna().id, .recipient = anna().email};
}

} // namespace marrowbox::test
