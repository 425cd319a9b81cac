/// One job on a repository, as a program of its own for tests that kill it, fail its calls, or hold it:
/// marrowbox-crash-run DESTINATION GENERATION backs up a generated source, marrowbox-crash-run DESTINATION
/// prune removes all snapshots but the latest. Ends with 0 when the job is done, and with 3 and the failure's
/// words when it refused.

#include "Program/GeneratedSource.h"

#include "Repository/BackupEngine.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

using namespace marrowbox;

constexpr int refused = 3;

asio::awaitable<void> ignoreProgress(std::string) {
    co_return;
}

void backUp(const fs::path& destination, int generation) {
    asio::thread_pool threads(2);
    BackupEngine engine(threads.get_executor(), systemClock());
    auto snapshot = asio::co_spawn(threads,
                                   engine.run(test::generatedUnit(), destination,
                                              std::make_shared<test::GeneratedSource>(generation),
                                              ignoreProgress, std::stop_token()),
                                   asio::use_future);
    snapshot.get();
}

void prune(const fs::path& destination) {
    asio::thread_pool threads(2);
    BackupEngine engine(threads.get_executor(), [] { return Date{1e12}; });
    SyncUnit unit = test::generatedUnit();
    unit.retentionDays = 1;
    asio::co_spawn(threads, engine.prune(unit, destination), asio::use_future).get();
}

} // namespace

int main(int count, char** words) {
    if (count != 3)
        return EXIT_FAILURE;
    try {
        if (std::string_view(words[2]) == "prune")
            prune(words[1]);
        else
            backUp(words[1], std::atoi(words[2]));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return refused;
    }
    return EXIT_SUCCESS;
}
