// All that a backup does, beside restic and borg on the same tree, and beside `rclone copy` on the road from
// a drive service to the disk. A table, without bars.
//
//     bench-peers [FILES [RUNS]]       2,000 small files and 5 runs unless told otherwise: 6 GB of room
//
// Each job is a process of its own, measured from its start to its end with the most memory that it held. The
// programs take turns at each job, in another order in each run; the tree is in the page cache, and nothing
// waits to be written when one begins. What they made stays until the end, since a file system may take its
// time to give new files the places of those that were removed just before. What differs: ours gets the files
// from a source, which walks the tree as the others do, but is asked twice, since a run proves that its
// source held still, and copies each file to where it is verified and moved into the store. It knows the MD5
// digests beforehand, as a drive service tells them, and verifies them. restic encrypts, which cannot be
// switched off; borg does not here. Both compress by default, and find nothing to compress.
#include "Measuring/Peers.h"
#include "Beside/DriveRoad.h"
#include "Beside/LocalTree.h"
#include "Beside/OurJobs.h"
#include "Beside/Table.h"
#include "Beside/Watched.h"
#include "Measuring/Command.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace {

using namespace marrowbox;

/// A folder of the benchmark's own, removed with the object.
struct Scratch {
    Scratch() { fs::create_directories(path); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    const fs::path path = fs::temp_directory_path() / ("marrowbox-bench-peers-" + std::to_string(::getpid()));
};

/// What a program is told for each job, as text for a shell. The restored tree goes to its target.
struct Program {
    std::string name;
    fs::path target;
    std::string first;
    std::string unchanged;
    std::string changed;
    std::string restore;
    std::string later;
    std::string prune;
};
using Job = std::string Program::*;

Program ours(const fs::path& folder, const fs::path& tree) {
    const fs::path repository = folder / "ours";
    const fs::path target = folder / "restored-ours";
    bench::makeOurs(repository);
    const std::string backup = bench::ourselves({"backup", tree, repository});
    return {"Marrowbox", target,
            backup,      backup,
            backup,      bench::ourselves({"restore", repository, target}),
            backup,      bench::ourselves({"prune", repository})};
}

Program restic(const fs::path& folder, const fs::path& tree) {
    const bench::Restic restic(folder / "restic");
    const fs::path target = folder / "restored-restic";
    const std::string backup = restic.command("backup .", tree);
    return {"restic", target,
            backup,   backup,
            backup,   restic.command("restore latest --target " + bench::quoted(target), tree),
            backup,   restic.command("forget --prune --keep-last 1", tree)};
}

Program borg(const fs::path& folder, const fs::path& tree) {
    const bench::Borg borg(folder / "borg");
    const fs::path target = folder / "restored-borg";
    fs::create_directories(target);
    // Only compacting frees what pruning leaves unused.
    return {"borg",
            target,
            borg.command("create ::first .", tree),
            borg.command("create ::unchanged .", tree),
            borg.command("create ::changed .", tree),
            borg.command("extract ::changed", target),
            borg.command("create ::later .", tree),
            borg.command("prune --keep-last 1", tree) + " && " + borg.command("compact", tree)};
}

/// One run through all jobs with new repositories.
class Round {
  public:
    Round(const fs::path& folder, const bench::LocalTree& tree, int number, bench::Table& table)
        : table_(table),
          programs_{ours(folder, tree.folder()), restic(folder, tree.folder()), borg(folder, tree.folder())} {
        std::ranges::rotate(programs_, programs_.begin() + number % 3);
    }

    void measure(const std::string& name, Job job) {
        for (const Program& program : programs_) {
            ::sync();
            table_.add(name, program.name, bench::costOf(program.*job));
        }
    }

    void runUnmeasured(Job job) {
        for (const Program& program : programs_)
            bench::runCommand(program.*job);
    }

    /// Throws when a program has not brought back every byte.
    void proveRestored(const fs::path& tree) {
        for (const Program& program : programs_)
            bench::runCommand("diff -r " + bench::quoted(tree) + " " + bench::quoted(program.target));
    }

  private:
    bench::Table& table_;
    std::vector<Program> programs_;
};

void showProgress(const std::string& words) {
    if (::isatty(STDERR_FILENO) == 1)
        std::fprintf(stderr, "\r%-60s\r", words.c_str());
}

void measurePrograms(const fs::path& scratch, const bench::TreeShape& shape, int rounds) {
    bench::LocalTree tree(scratch / "tree", shape);
    bench::Table table({"Marrowbox", "restic", "borg"});
    for (int number = 0; number < rounds; ++number) {
        showProgress("Backup programs: run " + std::to_string(number + 1));
        const fs::path folder = scratch / ("round-" + std::to_string(number));
        Round round(folder, tree, number, table);
        round.measure("first backup", &Program::first);
        round.measure("nothing changed", &Program::unchanged);
        tree.changeOneIn(100);
        round.measure("1 % changed", &Program::changed);
        round.measure("restore", &Program::restore);
        round.proveRestored(tree.folder());
        tree.changeOneIn(5);
        round.runUnmeasured(&Program::later);
        round.measure("prune", &Program::prune);
    }
    showProgress("");
    table.print();
}

void measureRoad(const fs::path& scratch, const bench::DriveRoad::Shape& shape, int rounds) {
    const bench::DriveRoad road(scratch / "services", shape);
    const std::vector<std::pair<std::string, std::function<std::string(const fs::path&)>>> contenders{
        {"Marrowbox", [&](const fs::path& target) { return road.backup(target); }},
        {"rclone copy", [&](const fs::path& target) { return road.copy(target, ""); }},
        {"rclone, unpaced",
         [&](const fs::path& target) { return road.copy(target, "--drive-pacer-min-sleep 1ms"); }}};
    bench::Table table({"Marrowbox", "rclone copy", "rclone, unpaced"});
    for (int round = 0; round < rounds; ++round)
        for (std::size_t turn = 0; turn < contenders.size(); ++turn) {
            showProgress("From Drive to disk: run " + std::to_string(round + 1));
            const auto& [name, command] =
                contenders[(turn + static_cast<std::size_t>(round)) % contenders.size()];
            const fs::path target =
                scratch / ("fetched-" + std::to_string(round) + "-" + std::to_string(turn));
            ::sync();
            table.add("first backup", name, bench::costOf(command(target)));
        }
    showProgress("");
    table.print();
}

void printHeader(const bench::TreeShape& shape, int rounds, const fs::path& scratch) {
    char date[40];
    const std::time_t now = std::time(nullptr);
    std::strftime(date, sizeof date, "%Y-%m-%d %H:%M UTC", std::gmtime(&now));
    std::printf("%s, ./bench peers, %u processors, in %s, medians of %d runs\n", date,
                std::thread::hardware_concurrency(), scratch.parent_path().c_str(), rounds);
    std::printf("%s (encrypts, as it always does), %s (--encryption=none), %s\n",
                bench::firstLineOf("restic version | cut -d ' ' -f 1,2").c_str(),
                bench::firstLineOf("borg --version").c_str(), bench::firstLineOf("rclone version").c_str());
    std::printf("ratio: ours / theirs\n\nOn the disk: %s\n\n", shape.words().c_str());
    std::fflush(stdout);
}

/// Runs as one of the processes that are measured, or as the one that measures.
int runJob(const std::vector<std::string>& arguments) {
    const std::string& job = arguments.front();
    const std::vector<std::string> rest(arguments.begin() + 1, arguments.end());
    if (job == "watch")
        return bench::watch(rest.at(0));
    if (job == "backup")
        bench::backUpOurs(std::make_shared<bench::LocalTreeSource>(rest.at(0)), rest.at(1));
    else if (job == "restore")
        bench::restoreOurs(rest.at(0), rest.at(1));
    else if (job == "prune")
        bench::pruneOurs(rest.at(0));
    else if (job == "fetch")
        bench::DriveRoad::backUp(rest);
    else
        throw std::invalid_argument("There is no such job: " + job);
    return 0;
}

void measureAll(const std::vector<std::string>& arguments) {
    bench::TreeShape shape;
    if (!arguments.empty())
        shape.files = std::stoul(arguments[0]);
    const int rounds = arguments.size() > 1 ? std::stoi(arguments[1]) : 5;
    const Scratch scratch;
    printHeader(shape, rounds, scratch.path);
    measurePrograms(scratch.path, shape, rounds);
    const bench::DriveRoad::Shape road;
    std::printf("\nFrom Drive to disk: %s\n", road.words().c_str());
    std::printf("unpaced: rclone told not to wait between its requests (--drive-pacer-min-sleep 1ms)\n\n");
    measureRoad(scratch.path, road, rounds);
}

bool isNumber(const std::string& text) {
    return !text.empty() &&
           std::ranges::all_of(text, [](char digit) { return digit >= '0' && digit <= '9'; });
}

} // namespace

int main(int count, char** values) {
    const std::vector<std::string> arguments(values + 1, values + count);
    try {
        if (!arguments.empty() && !isNumber(arguments.front()))
            return runJob(arguments);
        measureAll(arguments);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench-peers: %s\n", failure.what());
        return 1;
    }
}
