#pragma once

#include "GoogleOAuth/HTTPSession.h"
#include "Marrowbox/MarrowboxApp/FileChoosers.h"
#include "Marrowbox/Platform/LinuxDesktop.h"
#include "Platform/Clock.h"
#include "Processes/ProcessSurroundings.h"

#include <QDBusConnection>
#include <QUrl>
#include <functional>
#include <optional>

namespace marrowbox {

/// The OAuth client file that an installation may bring along.
std::optional<fs::path> installedClient();
/// Ends the event loop of the application.
void endEventLoop();

/// All that the program meets outside itself.
struct ProgramSurroundings {
    QDBusConnection sessionBus;
    QDBusConnection systemBus;
    ProcessSurroundings process = ProcessSurroundings::ofThisProcess();
    HTTPSettings web = HTTPSettings::fromEnvironment();
    Chooser chooseJSONFile = FileChoosers::chooseJSONFile;
    Chooser chooseFolder = FileChoosers::chooseFolder;
    std::optional<fs::path> bundledClient = installedClient();
    Clock clock = systemClock();
    std::function<void()> end = endEventLoop; ///< Called once the program may end.
    QUrl screens = QUrl("qrc:/Marrowbox/MarrowboxApp/Main.qml");
};

} // namespace marrowbox
