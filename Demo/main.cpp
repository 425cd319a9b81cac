// The main job on real input: an account is connected, a Drive folder of some hundred files is backed up over
// TLS by the real rclone, changed, backed up again, and brought back. Only Google is simulated.
#include "Demo/Stage.h"
#include "Demo/Story.h"
#include "Demo/Volumes.h"
#include "Demo/Window.h"
#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "Platform/Files.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <csignal>
#include <iostream>

namespace marrowbox::demo {

namespace {

constexpr int interruptedStatus = 130;

/// What a run of the demonstration that was killed may have left mounted is ejected first.
asio::awaitable<void> prepare(fs::path folder) {
    if (fs::exists(folder / "MountedSnapshots"))
        co_await clearVolumes(folder);
    removeTree(folder);
    makeDirectories(folder.parent_path());
    makeDirectory(folder, 0700);
}

asio::awaitable<std::exception_ptr> failureToShow(Stage& stage, fs::path folder, std::stop_token stop) {
    tellDailyUse();
    try {
        co_await showWindow(stage.surroundingsOfPrograms(), ProcessSurroundings::ofThisProcess().environment,
                            folder, stop);
    } catch (...) {
        co_return std::current_exception();
    }
    co_return nullptr;
}

/// However the demonstration ends, nothing stays mounted.
asio::awaitable<void> perform(fs::path folder, std::stop_token stop) {
    co_await prepare(folder);
    throwIfCancelled(stop);
    std::exception_ptr failure;
    {
        Stage stage(folder, storyDays);
        auto work = asio::co_spawn(stage.executor(), demonstrate(stage, stop), asio::use_awaitable);
        try {
            co_await std::move(work);
        } catch (...) {
            failure = std::current_exception();
        }
        co_await asio::co_spawn(stage.executor(), stage.windDown(), asio::use_awaitable);
        if (!failure)
            failure = co_await failureToShow(stage, folder, stop);
    }
    const auto issue = co_await clearVolumes(folder);
    if (issue)
        throw BackupError("A volume could not be taken away, so its files stay in " + folder.string() + ". " +
                          *issue);
    // A signal from a terminal reaches the tools as well, and their failures then say nothing.
    if (failure && stop.stop_requested()) {
        removeTree(folder);
        throw CancellationError();
    }
    if (failure)
        std::rethrow_exception(failure);
}

/// Runs until the demonstration has wound down, not only until a signal has come.
void run(const fs::path& folder) {
    std::stop_source stop;
    asio::io_context context;
    asio::signal_set interrupts(context, SIGINT, SIGTERM, SIGHUP);
    interrupts.add(SIGPIPE); // nobody reads on
    interrupts.async_wait([stop](boost::system::error_code failed, int) mutable {
        if (!failed)
            stop.request_stop();
    });
    std::exception_ptr failure;
    asio::co_spawn(context, perform(folder, stop.get_token()), [&](std::exception_ptr thrown) {
        failure = std::move(thrown);
        interrupts.cancel();
    });
    context.run();
    if (failure)
        std::rethrow_exception(failure);
}

/// The last words, which nobody may be there to read.
int ended(const std::string& words, int status) {
    std::signal(SIGPIPE, SIG_IGN);
    std::cerr << "\n" << words << "\n";
    return status;
}

} // namespace

} // namespace marrowbox::demo

int main(int count, char** arguments) {
    using namespace marrowbox;
    if (count != 2) {
        std::cerr << "Usage: marrowbox-demo FOLDER, which is made anew.\n";
        return 2;
    }
    try {
        demo::run(fs::absolute(arguments[1]));
        return 0;
    } catch (const CancellationError&) {
        return demo::ended("Stopped. Nothing was left running, mounted or half done.",
                           demo::interruptedStatus);
    } catch (const std::exception& error) {
        return demo::ended(error.what(), 1);
    }
}
