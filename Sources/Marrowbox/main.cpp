#include "Marrowbox/MarrowboxApp/MarrowboxApp.h"
#include "Marrowbox/Platform/SingleInstance.h"
#include "Platform/CoreDumps.h"
#include "Platform/StandardStreams.h"

#include <QApplication>
#include <csignal>
#include <cstdio>
#include <exception>

namespace {

using namespace marrowbox;

/// How long a first copy of the program may take to answer a second one.
constexpr std::chrono::milliseconds activationPatience{3000};

/// What a parent may have set for its children must not reach the program's own.
void resetSignals() {
    std::signal(SIGCHLD, SIG_DFL);
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is a failure like any other
}

int run() {
    const ProgramSurroundings surroundings{.sessionBus = QDBusConnection::sessionBus(),
                                           .systemBus = QDBusConnection::systemBus()};
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");

    std::unique_ptr<MarrowboxApp> app;
    SingleInstance instance(surroundings.sessionBus, instanceName(surroundings.process.environment),
                            [&](const QString& given) {
                                if (app)
                                    app->showWindow(given);
                            });
    if (instance.claim(token, activationPatience) == SingleInstance::Role::second)
        return 0;
    app = std::make_unique<MarrowboxApp>(surroundings);
    app->showWindow(token);
    return QApplication::exec();
}

} // namespace

int main(int count, char** words) {
    occupyStandardStreams();
    forbidCoreDumps();
    resetSignals();
    const QApplication application(count, words);
    QApplication::setApplicationName("marrowbox");
    QApplication::setApplicationDisplayName("Marrowbox");
    QApplication::setDesktopFileName("net.marrowbox.Marrowbox");
    QApplication::setQuitOnLastWindowClosed(false);
    try {
        return run();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "Marrowbox cannot start: %s\n", failure.what());
        return 1;
    }
}
