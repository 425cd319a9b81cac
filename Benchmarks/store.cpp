// The store with 50 units, 10,000 runs and 20 accounts: from its construction to the end of its first tick, a
// tick with nothing due, which must write nothing, and writing the configuration. The history of the unit
// that is shown is empty, since reading histories has a figure of its own.
#include "AppSupport/RecordingDesktop.h"
#include "Busy/BusyUser.h"
#include "Marrowbox/AppStore/AppStore.h"
#include "Measuring/Measure.h"
#include "Platform/Files.h"
#include "SnapshotMount/HdiutilTool.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>
#include <cstdio>
#include <iostream>
#include <stdexcept>

namespace {

using namespace marrowbox;

constexpr Date now{794'134'800};
constexpr std::chrono::milliseconds pause{200};

asio::awaitable<HTTPResponse> noWeb(std::shared_ptr<const HTTPRequest>, std::stop_token) {
    throw TransportError(TransportErrorCode::other, "No mail is due.");
    co_return HTTPResponse{};
}

/// The store on a main thread that the benchmark turns, and on a pool of two.
class Program {
  public:
    explicit Program(const bench::BusyUser& user)
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
    /// Lets some time go by.
    void rest() {
        main_.restart();
        asio::steady_timer timer(main_, pause);
        bool isOver = false;
        timer.async_wait([&isOver](boost::system::error_code) { isOver = true; });
        runUntil([&isOver] { return isOver; });
    }

  private:
    test::RecordingDesktop desktop_;
    asio::thread_pool pool_{2};
    asio::io_context main_;
    std::shared_ptr<AppStore> store_;
};

int measureStart(bench::BusyUser& user) {
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

int measureTick(const bench::BusyUser& user) {
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

int measurePersist(const bench::BusyUser& user) {
    Program program(user);
    std::vector<double> times;
    std::vector<double> ownTimes;
    for (int round = 0; round < 15; ++round) {
        const double own = processorSeconds();
        times.push_back(bench::seconds([&] { program.store().persist(); }));
        ownTimes.push_back(processorSeconds() - own);
        program.settle();
        // A person's next change comes later; one at once would wait until the disk has let the old file go.
        program.rest();
    }
    char remark[80];
    std::snprintf(remark, sizeof remark, "ms for %.1f MB, %.1f of them the processor's",
                  static_cast<double>(fs::file_size(user.file())) / 1e6, bench::median(ownTimes) * 1000);
    return bench::reportAtMost("store-persist", bench::median(times) * 1000, 20, remark);
}

} // namespace

int main() {
    bench::BusyUser user("store", now);
    const int start = measureStart(user);
    const int tick = measureTick(user);
    return start | tick | measurePersist(user);
}
