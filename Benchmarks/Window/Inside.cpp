#include "Window/Inside.h"

#include "Marrowbox/ContentView/MainWindowModel.h"
#include "Marrowbox/MarrowboxApp/MarrowboxApp.h"
#include "Window/Heartbeat.h"

#include <QApplication>
#include <QQuickWindow>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>

namespace marrowbox::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto settlingTime = 2s;

void turnFor(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

void turnUntil(const std::function<bool()>& holds) {
    while (!holds())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// The program as its main function makes it.
class ShownProgram {
  public:
    ShownProgram(int& count, char** words)
        : application_(count, words),
          program_({.sessionBus = QDBusConnection::sessionBus(), .systemBus = QDBusConnection::systemBus()}) {
        QApplication::setQuitOnLastWindowClosed(false);
        program_.showWindow({});
        bool isDrawn = false;
        QObject::connect(&window(), &QQuickWindow::frameSwapped, [&isDrawn] { isDrawn = true; });
        turnUntil([&isDrawn] { return isDrawn; });
        QObject::disconnect(&window(), &QQuickWindow::frameSwapped, nullptr, nullptr);
        turnFor(settlingTime);
    }

    static QQuickWindow& window() {
        for (QWindow* const window : QGuiApplication::topLevelWindows())
            if (auto* const found = qobject_cast<QQuickWindow*>(window))
                return *found;
        throw std::runtime_error("The program has no window.");
    }
    static MainWindowModel& model() { return *window().property("model").value<MainWindowModel*>(); }

  private:
    QApplication application_;
    MarrowboxApp program_;
};

double processorMilliseconds() {
    timespec used{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) / 1e6;
}

/// The number behind a word in a file of the system's.
double numberIn(const std::filesystem::path& file, const std::string& name) {
    std::ifstream stream(file);
    std::string word;
    double number = 0;
    while (stream >> word)
        if (word == name && stream >> number)
            return number;
    throw std::runtime_error("The system does not tell " + name);
}

/// How often the threads of this process went to wait.
double waits() {
    double sum = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task"))
        sum += numberIn(thread.path() / "status", "voluntary_ctxt_switches:");
    return sum;
}

} // namespace

int measureSelecting(int count, char** words, int row) {
    const ShownProgram program(count, words);
    UnitListModel& units = *ShownProgram::model().units();
    const HistoryModel& history = *ShownProgram::model().unitPage()->history();
    const Heartbeat heartbeat;
    units.select(row);
    turnUntil([&history] { return history.count() > 0; });
    turnFor(settlingTime);
    units.select(0);
    turnFor(settlingTime);
    std::printf("%f %f\n", heartbeat.longestWait().count(), heartbeat.workInLongestWait().count());
    return 0;
}

int measureIdling(int count, char** words, int seconds, int secondsWithTick) {
    const ShownProgram program(count, words);
    ShownProgram::window().hide(); // as closing it does where there is a tray
    turnFor(settlingTime);
    const double begin = processorMilliseconds();
    const double waitsBefore = waits();
    turnFor(std::chrono::seconds(seconds));
    const double beforeTick = processorMilliseconds();
    const double waited = waits() - waitsBefore;
    turnFor(std::chrono::seconds(secondsWithTick));
    std::printf("%f %f %f %f\n", beforeTick - begin, waited, processorMilliseconds() - beforeTick,
                numberIn("/proc/self/status", "VmRSS:") * 1024);
    return 0;
}

} // namespace marrowbox::bench
