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

void say(const std::string& line) {
    std::cout << "\n" << line << std::endl;
}

/// Writes down what a backup did, and what the Drive held at that time: nothing changes in it between two
/// steps of the demonstration.
asio::awaitable<void> keep(Stage& stage, Place& place, std::string name, Time::duration time, Lines& lines,
                           std::stop_token stop) {
    const SnapshotList history = co_await stage.history(place.unit, stop);
    lines.runs.push_back(runLine(std::move(name), history->front(), time));
    place.history.push_back({history->front(), pictureOf(stage.sandbox().drive(), place.source)});
}

asio::awaitable<Place> addPlace(Stage& stage, std::string name, DriveLocation source, Lines& lines,
                                std::stop_token stop) {
    say("A new backup: " + name);
    Place place{.source = source.id};
    const auto begin = Time::now();
    place.unit = co_await stage.addUnit(name, std::move(source), stop);
    co_await keep(stage, place, name + ", first backup", Time::now() - begin, lines, stop);
    co_return place;
}

asio::awaitable<void> backUp(Stage& stage, Place& place, std::string which, Lines& lines,
                             std::stop_token stop) {
    const std::string name = place.unit.name + ", " + which + " backup";
    say(name + ", as scheduled");
    const auto begin = Time::now();
    const RunRecord run = co_await stage.scheduledBackup(place.unit, stop);
    co_await keep(stage, place, name, Time::now() - begin, lines, stop);
}

void tellMails(const Stage& stage) {
    say("Meanwhile in the mailbox:");
    for (const std::string& subject : stage.mailSubjects())
        std::cout << "  " << subject << std::endl;
}

asio::awaitable<void> shortenHistory(Stage& stage, Place& place, Lines& lines, std::stop_token stop) {
    const SnapshotList before = co_await stage.history(place.unit, stop);
    stage.keepHistory(place.unit, 30);
    stage.sleep(storyDays - 1);
    co_await backUp(stage, place, "third", lines, stop);
    const SnapshotList after = co_await stage.history(place.unit, stop);
    std::cout << "  History is now kept for 30 days: " << before->size() + 1 << " snapshots became "
              << after->size() << "." << std::endl;
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
    const fs::path folder = co_await stage.restore(moment.snapshot, place.unit, stop);
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
    const std::string page = co_await stage.signIn(stop);
    std::cout << "  The browser shows: " << page << "\n  Connected " << stage.account().email
              << ", read-only, with leave to send mail." << std::endl;

    Lines lines;
    Place papers =
        co_await addPlace(stage, "Ada's papers", {.id = tree.papers, .name = "Ada's papers"}, lines, stop);
    Place team = co_await addPlace(
        stage, "Shared drive", {.id = tree.team, .name = "Team", .sharedDriveID = tree.team}, lines, stop);
    tellChanges(sandbox::changeDemoTree(drive, tree));
    say("The computer sleeps for a day, and wakes.");
    stage.sleep(1);
    co_await backUp(stage, papers, "second", lines, stop);
    co_await backUp(stage, team, "second", lines, stop);
    co_await bringBack(stage, papers, lines, stop);
    co_await bringBack(stage, team, lines, stop);
    co_await mount(stage, papers, papers.history.back(), lines, stop);
    co_await shortenHistory(stage, papers, lines, stop);
    // Nothing is due when the window opens on all this.
    co_await backUp(stage, team, "third", lines, stop);
    tellMails(stage);

    std::cout << "\n";
    printTable(std::cout, lines.runs, lines.back);
    std::cout << "\nThe repositories lie in\n  " << stage.repository(papers.unit).string() << "\n  "
              << stage.repository(team.unit).string() << "\n";
}

} // namespace marrowbox::demo
