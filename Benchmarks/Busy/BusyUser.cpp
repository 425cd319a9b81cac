#include "Busy/BusyUser.h"

#include "Credentials/AppCredentials.h"
#include "Models/JSONFile.h"
#include "Platform/Files.h"
#include "Repository/BackupRepository.h"

#include <cstdlib>
#include <fcntl.h>

namespace marrowbox::bench {

namespace {

constexpr double day = 86'400;
constexpr std::size_t accountCount = 20;
constexpr std::size_t unitCount = 50;
constexpr std::size_t runCount = 10'000;

fs::path made(const std::string& name) {
    std::string path = (fs::temp_directory_path() / ("marrowbox-bench-" + name + "-XXXXXX")).string();
    if (::mkdtemp(path.data()) == nullptr)
        throwSystemError("mkdtemp", path);
    return path;
}

} // namespace

BusyUser::BusyUser(const std::string& name, Date now) : folder_(made(name)), now_(now) {
    makeDirectories(data(), 0700);
    fs::create_directory(disk());
    makeDirectory(data() / "MountedSnapshots", 0700);
    writeAll(openFile(client(), O_WRONLY | O_CREAT),
             R"({"installed":{"client_id":"a.apps.googleusercontent.com","client_secret":"b"}})");
    for (std::size_t number = 0; number < accountCount; ++number)
        addAccount("10000000000000000000" + std::to_string(number));
    for (std::size_t number = 0; number < unitCount; ++number)
        addUnit(static_cast<int>(number));
    for (std::size_t number = 0; number < runCount; ++number)
        addRun(static_cast<int>(number));
    BackupRepository(disk(), configuration.units.front().id).initialize();
}

BusyUser::~BusyUser() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void BusyUser::write() const {
    JSONFile::write(configuration, file());
}

void BusyUser::addAccount(const std::string& id) {
    configuration.accounts.push_back(
        {.id = id, .email = id + "@example.org", .name = "Anna", .canSendEmail = true});
    AppCredentials(data() / "Credentials").save(std::string(600, 't'), "google." + id);
}

void BusyUser::addUnit(int number) {
    SyncUnit unit;
    unit.id = Uuid::random();
    unit.name = "Unit " + std::to_string(number);
    unit.accountID = configuration.accounts[static_cast<std::size_t>(number) % accountCount].id;
    unit.source = {.id = "root", .name = "My Drive"};
    unit.destinationPath = disk().string();
    unit.schedule = {.frequency = ScheduleFrequency::daily, .hour = 9};
    unit.nextRun = now_ + 3600 + number;
    unit.notifications = number % 2 == 0 ? NotificationPolicy::all : NotificationPolicy::daily;
    unit.lastDigestAt = now_ - 2 * day;
    configuration.units.push_back(unit);
}

/// One run in a hundred waits for the next attempt to mail it.
void BusyUser::addRun(int number) {
    const SyncUnit& unit = configuration.units[static_cast<std::size_t>(number) % unitCount];
    RunRecord run = beginRunRecord(unit, "anna@example.org", true, now_ - 600.25 * (number + 1));
    run.endedAt = run.startedAt + 61.5;
    run.outcome = number % 7 == 0 ? RunOutcome::failed : RunOutcome::succeeded;
    if (run.outcome == RunOutcome::failed)
        run.detail = "Choose an existing destination folder.";
    else
        run.snapshotID = Uuid::random();
    run.summary.unchanged = 120'000 + number;
    run.emailSent = number % 100 != 0;
    if (run.emailSent)
        run.emailSentAt = run.endedAt;
    else
        run.nextEmailAttempt = now_ + 600;
    run.emailSettings = EmailSettings{
        .provider = EmailProvider::gmail, .accountID = unit.accountID, .recipient = "anna@example.org"};
    run.notificationPolicy = unit.notifications;
    configuration.runs.push_back(run);
}

} // namespace marrowbox::bench
