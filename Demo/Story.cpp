#include "Demo/Story.h"

#include "Demo/Comparison.h"
#include "Demo/Report.h"
#include "Models/BackupError.h"
#include "Platform/Files.h"
#include "Platform/FuseSupport.h"
#include "Sandbox/DemoTree.h"

#include <iostream>

namespace marrowbox::demo {

namespace {

using Time = std::chrono::steady_clock;

/// A snapshot, and what its source held when it was made.
struct Moment {
    Snapshot snapshot;
    DrivePicture picture;
};

/// One place of the account, and its history.
struct Place {
    SyncUnit unit;
    std::string source;
    std::vector<Moment> history;
};

/// What the closing table says.
struct Lines {
    std::vector<RunLine> runs;
    std::vector<ReadBackLine> back;
};

asio::awaitable<void> printLine(std::string line) {
    std::cout << "  " << line << std::endl;
    co_return;
}

void say(const std::string& line) {
    std::cout << "\n" << line << std::endl;
}

asio::awaitable<void> backUp(Stage& stage, Place& place, std::string which, Lines& lines,
                             std::stop_token stop) {
    const std::string name = place.unit.name + ", " + which + " backup";
    say(name);
    const auto begin = Time::now();
    Snapshot snapshot = co_await stage.backUp(place.unit, printLine, stop);
    lines.runs.push_back(runLine(name, snapshot, Time::now() - begin));
    // Nothing changes in the Drive between two steps of the demonstration.
    place.history.push_back({std::move(snapshot), pictureOf(stage.sandbox().drive(), place.source)});
}

void tellChanges(const sandbox::DemoChanges& changes) {
    say("Meanwhile in Google Drive: " + std::to_string(changes.added) + " files added, " +
        std::to_string(changes.edited) + " edited, " + std::to_string(changes.renamed) + " renamed, " +
        std::to_string(changes.moved) + " moved, " + std::to_string(changes.trashed) + " put in the trash.");
}

/// Holds a folder against its moment, and says so.
Compared compared(const fs::path& folder, const Moment& moment, const std::stop_token& stop) {
    const Compared same = compare(folder, moment.picture, stop);
    std::cout << "  Held against Google Drive: " << same.files << " files, " << same.folders << " folders, "
              << same.bytes << " bytes. Every name and every byte is the same." << std::endl;
    return same;
}

asio::awaitable<void> restore(Stage& stage, const Place& place, const Moment& moment, std::string which,
                              Lines& lines, std::stop_token stop) {
    const std::string name = place.unit.name + ", " + which + " snapshot";
    say("Restoring " + name);
    const auto begin = Time::now();
    const fs::path folder = co_await stage.restore(moment.snapshot, place.unit, name, stop);
    const auto time = Time::now() - begin;
    lines.back.push_back({name + " restored", compared(folder, moment, stop), time});
}

/// Reads one file off the volume, as a person would.
void showFile(const fs::path& volume) {
    const fs::path file = fs::path("Letters") / "2022" / "Month 1" / "Letter 1.txt";
    std::cout << "  " << file.string() << " reads: " << readFile(volume / file) << std::flush;
}

asio::awaitable<void> mount(Stage& stage, const Place& place, const Moment& moment, Lines& lines,
                            std::stop_token stop) {
    const std::string name = place.unit.name + ", last snapshot";
    say("Mounting " + name);
    if (const auto reason = reasonForNoFUSE()) {
        std::cout << "  Not here: " << *reason << ". A volume needs FUSE; restoring does not." << std::endl;
        lines.back.push_back({name + " mounted", std::nullopt, {}});
        co_return;
    }
    const auto begin = Time::now();
    const MountedSnapshot mounted = co_await stage.mount(moment.snapshot, place.unit, stop);
    const auto time = Time::now() - begin;
    std::cout << "  A read-only volume at " << mounted.volume.string() << std::endl;
    showFile(mounted.volume);
    lines.back.push_back({name + " mounted", compared(mounted.volume, moment, stop), time});
    co_await stage.eject(mounted, stop);
    std::cout << "  Ejected." << std::endl;
}

asio::awaitable<void> bringBack(Stage& stage, const Place& place, Lines& lines, std::stop_token stop) {
    co_await restore(stage, place, place.history.front(), "first", lines, stop);
    co_await restore(stage, place, place.history.back(), "last", lines, stop);
}

} // namespace

asio::awaitable<void> demonstrate(Stage& stage, std::stop_token stop) {
    auto& drive = stage.sandbox().drive();
    const sandbox::DemoTree tree = sandbox::demoTree(drive);
    say("Signing in to Google");
    const GoogleAccount account = co_await stage.signIn(stop);
    std::cout << "  Connected " << account.email << ", read-only." << std::endl;

    Lines lines;
    Place papers{
        stage.addUnit(account, "Ada's papers", {.id = tree.papers, .name = "Ada's papers"}), tree.papers, {}};
    Place team{
        stage.addUnit(account, "Shared drive", {.id = tree.team, .name = "Team", .sharedDriveID = tree.team}),
        tree.team,
        {}};
    co_await backUp(stage, papers, "first", lines, stop);
    co_await backUp(stage, team, "first", lines, stop);
    tellChanges(sandbox::changeDemoTree(drive, tree));
    co_await backUp(stage, papers, "second", lines, stop);
    co_await backUp(stage, team, "second", lines, stop);
    co_await bringBack(stage, papers, lines, stop);
    co_await bringBack(stage, team, lines, stop);
    co_await mount(stage, papers, papers.history.back(), lines, stop);

    std::cout << "\n";
    printTable(std::cout, lines.runs, lines.back);
    std::cout << "\nThe repositories lie in\n  " << stage.repository(papers.unit).string() << "\n  "
              << stage.repository(team.unit).string() << "\n";
}

} // namespace marrowbox::demo
