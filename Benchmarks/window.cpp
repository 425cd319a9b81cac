// The program with its window, for somebody with 50 units and 10,000 runs, drawn without a graphics card: the
// time from its start to its first frame.
#include "Busy/BusyUser.h"
#include "Measuring/Measure.h"
#include "Platform/Clock.h"
#include "Window/Session.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstdio>

int main(int count, char** words) {
    using namespace marrowbox;
    const QCoreApplication application(count, words);
    const bench::Session session;
    const bench::BusyUser user("window", systemClock()());
    user.write();
    std::vector<double> times;
    for (int round = 0; round < 9; ++round)
        times.push_back(bench::millisecondsToFirstFrame(session, user.data()));
    char remark[80];
    std::snprintf(remark, sizeof remark, "ms to the first frame; %.0f at best", std::ranges::min(times));
    return bench::reportAtMost("window", bench::median(times), 400, remark);
}
