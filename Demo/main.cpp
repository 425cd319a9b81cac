// The main job on real input: a Drive folder of some hundred files is backed up over TLS by the real rclone,
// changed, and backed up again. Only Google is simulated.
#include "Demo/Report.h"
#include "Demo/Stage.h"
#include "Platform/Cancellation.h"
#include "Platform/Files.h"
#include "Sandbox/DemoTree.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/signal_set.hpp>
#include <csignal>
#include <iostream>

namespace marrowbox::demo {

namespace {

constexpr int interruptedStatus = 130;

asio::awaitable<void> printLine(std::string line) {
    std::cout << "  " << line << std::endl;
    co_return;
}

/// Backs a unit up, says so while it lasts, and gives its row of the table.
asio::awaitable<RunLine> show(Stage& stage, SyncUnit unit, std::string name, std::stop_token stop) {
    std::cout << "\n" << name << std::endl;
    const auto begin = std::chrono::steady_clock::now();
    const Snapshot snapshot = co_await stage.backUp(unit, printLine, stop);
    co_return runLine(name, snapshot, std::chrono::steady_clock::now() - begin);
}

void tellChanges(const sandbox::DemoChanges& changes) {
    std::cout << "\nMeanwhile in Google Drive: " << changes.added << " files added, " << changes.edited
              << " edited, " << changes.renamed << " renamed, " << changes.moved << " moved, "
              << changes.trashed << " put in the trash." << std::endl;
}

asio::awaitable<void> demonstrate(Stage& stage, std::stop_token stop) {
    auto& drive = stage.sandbox().drive();
    const sandbox::DemoTree tree = sandbox::demoTree(drive);
    const SyncUnit papers = stage.addUnit("Ada's papers", {.id = tree.papers, .name = "Ada's papers"});
    const SyncUnit team =
        stage.addUnit("Team", {.id = tree.team, .name = "Team", .sharedDriveID = tree.team});

    std::vector<RunLine> lines;
    lines.push_back(co_await show(stage, papers, "Ada's papers, first backup", stop));
    lines.push_back(co_await show(stage, team, "Shared drive, first backup", stop));
    tellChanges(sandbox::changeDemoTree(drive, tree));
    lines.push_back(co_await show(stage, papers, "Ada's papers, second backup", stop));
    lines.push_back(co_await show(stage, team, "Shared drive, second backup", stop));

    std::cout << "\n";
    printTable(std::cout, lines);
    std::cout << "\nThe repositories lie in\n  " << stage.repository(papers).string() << "\n  "
              << stage.repository(team).string() << "\n";
}

int run(const fs::path& folder) {
    removeTree(folder);
    makeDirectories(folder.parent_path());
    makeDirectory(folder, 0700);
    Stage stage(fs::absolute(folder));

    std::stop_source stop;
    asio::io_context signals;
    asio::signal_set interrupts(signals, SIGINT, SIGTERM);
    interrupts.async_wait([&](boost::system::error_code failed, int) {
        if (!failed)
            stop.request_stop();
    });
    // The loop lasts until the backups have wound down, not only until the signal has come.
    auto untilDone = asio::make_work_guard(signals);
    std::exception_ptr failure;
    asio::co_spawn(stage.executor(), demonstrate(stage, stop.get_token()), [&](std::exception_ptr thrown) {
        asio::post(signals, [&, thrown] {
            failure = thrown;
            interrupts.cancel();
            untilDone.reset();
        });
    });
    signals.run();
    if (failure)
        std::rethrow_exception(failure);
    return 0;
}

} // namespace

} // namespace marrowbox::demo

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "Usage: marrowbox-demo FOLDER, which is made anew.\n";
        return 2;
    }
    try {
        return marrowbox::demo::run(arguments[1]);
    } catch (const marrowbox::CancellationError&) {
        std::cerr << "\nStopped. No backup was left running, and nothing was published after that.\n";
        return marrowbox::demo::interruptedStatus;
    } catch (const std::exception& error) {
        std::cerr << "\n" << error.what() << "\n";
        return 1;
    }
}
