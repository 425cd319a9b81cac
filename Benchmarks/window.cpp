// The program with its window, for somebody with 50 units and 10,000 runs, drawn without a graphics card:
// from its start to its first frame; how long events wait while another unit is selected, whose 1,000
// snapshots hold 20,000 files each; and what it costs to let it stand with its window closed.
#include "Busy/BusyUser.h"
#include "Measuring/Manifests.h"
#include "Measuring/Measure.h"
#include "Models/JSONFile.h"
#include "Platform/Clock.h"
#include "Repository/BackupRepository.h"
#include "Window/Inside.h"
#include "Window/Session.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstdio>
#include <string_view>

namespace {

using namespace marrowbox;

constexpr std::size_t longHistory = 1; ///< The row of the unit with the many snapshots.
constexpr unsigned snapshotCount = 1'000;
constexpr std::size_t fileCount = 20'000;
constexpr int idleSeconds = 20; // with all that comes before it, less than from one tick to the next
constexpr int tickSeconds = 15; // after those: the first tick is over

int measureStart(const bench::Session& session, const bench::BusyUser& user) {
    std::vector<double> times;
    for (int round = 0; round < 9; ++round)
        times.push_back(bench::millisecondsToFirstFrame(session, user.data()));
    char remark[80];
    std::snprintf(remark, sizeof remark, "ms to the first frame; %.0f at best", std::ranges::min(times));
    return bench::reportAtMost("window-start", bench::median(times), 400, remark);
}

void publishHistory(const bench::BusyUser& user) {
    const BackupRepository repository(user.disk(), user.configuration.units[longHistory].id);
    repository.initialize();
    Snapshot snapshot = bench::manifest(fileCount);
    snapshot.unitID = repository.unitID();
    for (unsigned generation = 0; generation < snapshotCount; ++generation) {
        JSONFile::write(snapshot, repository.manifest(snapshot.id));
        snapshot = bench::laterManifest(snapshot, generation);
    }
}

int measureSelecting(const bench::Session& session, const bench::BusyUser& user) {
    publishHistory(user);
    std::vector<std::vector<double>> rounds; // the longest wait, and our work in it
    for (int round = 0; round < 3; ++round)
        rounds.push_back(bench::measuredInside(session, user.data(), {"selecting"}));
    std::ranges::sort(rounds);
    char remark[80];
    std::snprintf(remark, sizeof remark, "ms that an event waits at most; %.1f of them for our work",
                  rounds.at(1).at(1));
    return bench::reportAtMost("window-select", rounds.at(1).at(0), 16, remark);
}

int measureIdling(const bench::Session& session, const bench::BusyUser& user) {
    const auto numbers = bench::measuredInside(session, user.data(), {"idling"});
    char remark[100];
    std::snprintf(remark, sizeof remark,
                  "ms of processor in %d s between ticks, in %.0f wakings; a tick: %.1f ms", idleSeconds,
                  numbers.at(1), numbers.at(2));
    const int processor = bench::reportAtMost("window-idle", numbers.at(0), 1, remark);
    return processor |
           bench::reportAtMost("window-idle-memory", numbers.at(3) / 1e6, 120, "MB resident, window closed");
}

} // namespace

int main(int count, char** words) {
    const std::string_view role = count == 2 ? words[1] : "";
    if (role == "selecting")
        return bench::measureSelecting(count, words, longHistory);
    if (role == "idling")
        return bench::measureIdling(count, words, idleSeconds, tickSeconds);
    const QCoreApplication application(count, words);
    const bench::Session session;
    bench::BusyUser user("window", systemClock()());
    user.write();
    const int start = measureStart(session, user);
    const int idle = measureIdling(session, user);
    return start | idle | measureSelecting(session, user);
}
