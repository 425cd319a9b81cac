// The store with 50 units, 10,000 runs and 20 accounts: from its construction to the end of its first tick, a
// tick with nothing due, which must write nothing, and writing the configuration. The history of the unit
// that is shown is empty, since reading histories has a figure of its own.
#include "AppSupport/RecordingDesktop.h"
#include "Marrowbox/AppStore/AppStore.h"
#include "Measuring/Measure.h"
#include "Models/JSONFile.h"
#include "Repository/BackupRepository.h"
#include "SnapshotMount/HdiutilTool.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/thread_pool.hpp>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <stdexcept>

namespace {

using namespace marrowbox;

constexpr Date now{794'134'800};
constexpr double day = 86'400;

asio::awaitable<HTTPResponse> noWeb(std::shared_ptr<const HTTPRequest>, std::stop_token) {
    throw TransportError(TransportErrorCode::other, "No mail is due.");
    co_return HTTPResponse{};
}

/// A folder of its own with all that a store finds at its start, removed with the object.
class BusyUser {
  public:
    BusyUser() : folder_(made()) {
        makeDirectories(data(), 0700);
        fs::create_directory(folder_ / "Disk");
        makeDirectory(data() / "MountedSnapshots", 0700);
        writeAll(openFile(client(), O_WRONLY | O_CREAT),
                 R"({"installed":{"client_id":"a.apps.googleusercontent.com","client_secret":"b"}})");
        for (int number = 0; number < 20; ++number)
            addAccount("10000000000000000000" + std::to_string(number));
        for (int number = 0; number < 50; ++number)
            addUnit(number);
        for (int number = 0; number < 10'000; ++number)
            addRun(number);
        BackupRepository(folder_ / "Disk", configuration.units[0].id).initialize();
    }
    BusyUser(const BusyUser&) = delete;
    BusyUser& operator=(const BusyUser&) = delete;
    ~BusyUser() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    fs::path data() const { return folder_ / "Data"; }
    fs::path file() const { return data() / "Configuration.json"; }
    fs::path client() const { return folder_ / "client.json"; }
    void write() const { JSONFile::write(configuration, file()); }

    AppConfiguration configuration;

  private:
    static fs::path made() {
        std::string name = (fs::temp_directory_path() / "marrowbox-bench-store-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("No temporary folder.");
        return name;
    }

    void addAccount(const std::string& id) {
        configuration.accounts.push_back(
            {.id = id, .email = id + "@example.org", .name = "Anna", .canSendEmail = true});
        AppCredentials(data() / "Credentials").save(std::string(600, 't'), "google." + id);
    }
    void addUnit(int number) {
        SyncUnit unit;
        unit.id = Uuid::random();
        unit.name = "Unit " + std::to_string(number);
        unit.accountID = configuration.accounts[static_cast<std::size_t>(number) % 20].id;
        unit.source = {.id = "root", .name = "My Drive"};
        unit.destinationPath = (folder_ / "Disk").string();
        unit.schedule = {.frequency = ScheduleFrequency::daily, .hour = 9};
        unit.nextRun = now + 3600 + number;
        unit.notifications = number % 2 == 0 ? NotificationPolicy::all : NotificationPolicy::daily;
        unit.lastDigestAt = now - 2 * day;
        configuration.units.push_back(unit);
    }
    /// One run in a hundred waits for the next attempt to mail it.
    void addRun(int number) {
        const SyncUnit& unit = configuration.units[static_cast<std::size_t>(number) % 50];
        RunRecord run = beginRunRecord(unit, "anna@example.org", true, now - 600.25 * (number + 1));
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
            run.nextEmailAttempt = now + 600;
        run.emailSettings = EmailSettings{
            .provider = EmailProvider::gmail, .accountID = unit.accountID, .recipient = "anna@example.org"};
        run.notificationPolicy = unit.notifications;
        configuration.runs.push_back(run);
    }

    fs::path folder_;
};

/// The store on a main thread that the benchmark turns, and on a pool of two.
class Program {
  public:
    explicit Program(const BusyUser& user)
        : store_(AppStore::start({.desktop = desktop_,
                                  .main = main_.get_executor(),
                                  .pool = pool_.get_executor(),
                                  .http = HTTP(noWeb, timerWait()),
                                  .mountMachine = MountMachine::live(ProcessSurroundings::ofThisProcess()),
                                  .makeSource = rcloneSources(),
                                  .environment = {{"MARROW_DATA_DIR", user.data().string()}},
                                  .rclone = std::nullopt,
                                  .bundledClient = user.client(),
                                  .clock = [] { return now; }})) {
        if (!store_->configurationIsReadable())
            throw std::runtime_error(**store_->state().errorMessage);
    }
    ~Program() {
        store_.reset();
        pool_.join();
    }

    AppStore& store() { return *store_; }
    /// Turns the main thread until the condition holds.
    void runUntil(const std::function<bool()>& holds) {
        while (!holds() && main_.run_one_for(std::chrono::seconds(10)) == 1)
            continue;
        if (!holds())
            throw std::runtime_error("The store stands still.");
    }
    /// Lets the main thread do all that it has to do now.
    void settle() { main_.poll(); }

  private:
    test::RecordingDesktop desktop_;
    asio::thread_pool pool_{2};
    asio::io_context main_;
    std::shared_ptr<AppStore> store_;
};

int measureStart(BusyUser& user) {
    // A due unit makes the first tick visible: there is no rclone, and it says so.
    user.configuration.units[7].nextRun = now - 60;
    user.write();
    std::vector<double> times;
    for (int round = 0; round < 9; ++round) {
        std::optional<Program> program;
        times.push_back(bench::seconds([&] {
            program.emplace(user);
            program->runUntil([&] { return program->store().state().errorMessage->has_value(); });
        }));
    }
    user.configuration.units[7].nextRun = now + 60;
    user.write();
    return bench::reportAtMost("store-start", bench::median(times) * 1000, 150,
                               "ms to the end of the first tick");
}

int measureTick(const BusyUser& user) {
    Program program(user);
    const auto state = program.store().state().snapshots->get();
    program.runUntil([&] { return program.store().state().snapshots->get() != state; });
    program.settle();
    struct stat before{};
    ::stat(user.file().c_str(), &before);
    const auto folder = fs::last_write_time(user.data());
    std::vector<double> times;
    for (int round = 0; round < 300; ++round)
        times.push_back(bench::seconds([&] {
            program.store().tick();
            program.settle();
        }));
    struct stat after{};
    ::stat(user.file().c_str(), &after);
    const bool wrote = before.st_ino != after.st_ino || before.st_mtim.tv_nsec != after.st_mtim.tv_nsec ||
                       fs::last_write_time(user.data()) != folder;
    const int status = bench::reportAtMost("store-tick", bench::median(times) * 1000, 1,
                                           wrote ? "ms, and it WROTE" : "ms with nothing due; wrote nothing");
    return wrote ? 1 : status;
}

/// What this thread has used of a processor, in seconds.
double processorSeconds() {
    timespec used{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

int measurePersist(const BusyUser& user) {
    Program program(user);
    std::vector<double> times;
    std::vector<double> ownTimes;
    for (int round = 0; round < 15; ++round) {
        const double own = processorSeconds();
        times.push_back(bench::seconds([&] { program.store().persist(); }));
        ownTimes.push_back(processorSeconds() - own);
        program.settle();
        // A person's next change comes later; one at once would wait until the disk lets the old file go.
        synchronizeFile(user.file());
    }
    char remark[80];
    std::snprintf(remark, sizeof remark, "ms for %.1f MB, %.1f of them the processor's",
                  static_cast<double>(fs::file_size(user.file())) / 1e6, bench::median(ownTimes) * 1000);
    return bench::reportAtMost("store-persist", bench::median(times) * 1000, 20, remark);
}

} // namespace

int main() {
    BusyUser user;
    const int start = measureStart(user);
    const int tick = measureTick(user);
    return start | tick | measurePersist(user);
}
