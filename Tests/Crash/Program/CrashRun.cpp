/// One job on a repository, as a program of its own for tests that kill it, fail its calls, or hold it:
/// marrowbox-crash-run DESTINATION JOB. A number backs up a generated source of this generation, "prune"
/// removes all snapshots but the latest, "initialize" makes the repository, "restore" restores the latest
/// snapshot into the destination's folder Restored, "credential" saves a credential in its folder
/// Credentials, "mount" mounts the latest snapshot and ejects it again. Ends with 0 when the job is done, and
/// with 3 and the failure's words when it refused.

#include "Program/GeneratedSource.h"
#include "Program/MountedBackup.h"

#include "Credentials/AppCredentials.h"
#include "Repository/BackupEngine.h"
#include "Repository/BackupRepository.h"

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

void restore(const fs::path& destination) {
    const BackupRepository repository(destination, test::generatedUnit().id);
    repository.restore(repository.snapshots().back(), destination / "Restored", {});
}

void work(const fs::path& destination, std::string_view job) {
    if (job == "prune")
        prune(destination);
    else if (job == "initialize")
        BackupRepository(destination, test::generatedUnit().id).initialize();
    else if (job == "restore")
        restore(destination);
    else if (job == "credential")
        AppCredentials(destination / "Credentials").save("new", "google.anna");
    else if (job == "mount")
        test::mountAndEject(destination);
    else
        backUp(destination, std::atoi(std::string(job).c_str()));
}

} // namespace

int main(int count, char** words) {
    if (count != 3)
        return EXIT_FAILURE;
    try {
        work(words[1], words[2]);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return refused;
    }
    return EXIT_SUCCESS;
}
