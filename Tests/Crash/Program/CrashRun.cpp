/// One backup of a generated source, as a program of its own for tests that kill it, fail its calls, or hold
/// it: marrowbox-crash-run DESTINATION GENERATION. Ends with 0 when a snapshot was published, and with 3 and
/// the failure's words when the run refused.

#include "Program/GeneratedSource.h"

#include "Repository/BackupEngine.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <cstdio>
#include <cstdlib>

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

} // namespace

int main(int count, char** words) {
    if (count != 3)
        return EXIT_FAILURE;
    try {
        backUp(words[1], std::atoi(words[2]));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return refused;
    }
    return EXIT_SUCCESS;
}
