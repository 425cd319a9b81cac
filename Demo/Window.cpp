#include "Demo/Window.h"

#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "Platform/Files.h"
#include "Processes/ProcessRunner.h"

#include <fcntl.h>
#include <iostream>

namespace marrowbox::demo {

namespace {

std::string valueOf(const Environment& environment, const std::string& name) {
    const auto found = environment.find(name);
    return found == environment.end() ? std::string() : found->second;
}

bool hasDisplay(const Environment& environment) {
    return !valueOf(environment, "DISPLAY").empty() || !valueOf(environment, "WAYLAND_DISPLAY").empty();
}

constexpr const char* openerText = R"(#!/bin/sh
case $1 in
https://accounts.google.com/*)
  exec curl --disable --silent --show-error --fail --globoff --location --max-time 60 --output /dev/null \
    --noproxy 127.0.0.1 --proxy "$HTTPS_PROXY" --cacert "$SSL_CERT_FILE" "$1" ;;
esac
PATH=$MARROWBOX_DEMO_PATH
export PATH
unset HTTPS_PROXY SSL_CERT_FILE
exec xdg-open "$@"
)";

/// What the stage moved away with the runtime folder, where its volumes are to appear, is named by its place.
void keepSessionReachable(Environment& environment, const Environment& own) {
    const fs::path runtime = valueOf(own, "XDG_RUNTIME_DIR");
    if (runtime.empty())
        return;
    const std::string display = valueOf(own, "WAYLAND_DISPLAY");
    if (!display.empty())
        environment["WAYLAND_DISPLAY"] = runtime / display; // one that is a path already stays what it is
    if (valueOf(own, "DBUS_SESSION_BUS_ADDRESS").empty() && fs::exists(runtime / "bus"))
        environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + (runtime / "bus").string();
}

Environment windowEnvironment(const Environment& own, const fs::path& folder) {
    const std::string path = valueOf(own, "PATH");
    Environment environment{{"MARROW_DATA_DIR", folder},
                            {"MARROWBOX_DEMO_PATH", path},
                            {"PATH", writtenOpener(folder).string() + ":" + path}};
    keepSessionReachable(environment, own);
    return environment;
}

} // namespace

fs::path writtenOpener(const fs::path& folder) {
    const fs::path programs = folder / "Programs";
    makeDirectory(programs, 0700);
    writeAll(openFile(programs / "xdg-open", O_WRONLY | O_CREAT | O_TRUNC, 0700), openerText);
    return programs;
}

void tellDailyUse() {
    std::cout
        << "\nFor daily use, with your own Google account:\n"
           "  1. ./package makes a Debian package and says how to install it; the menu then has Marrowbox.\n"
           "     (Without installing: "
        << MARROWBOX_PROGRAM
        << ")\n"
           "  2. At console.cloud.google.com, make an OAuth client of the kind “Desktop app”, allow the\n"
           "     Drive API and, for mails, the Gmail API, and download the client's JSON file.\n"
           "  3. In Settings, General, Developer connection, choose “Import Desktop OAuth JSON…”.\n"
           "     Then connect your account.\n"
        << std::flush;
}

asio::awaitable<void> showWindow(ProcessSurroundings surroundings, Environment session, fs::path folder,
                                 std::stop_token stop) {
    throwIfCancelled(stop);
    if (!hasDisplay(session)) {
        std::cout << "\nThere is no display here, so the window stays closed." << std::endl;
        co_return;
    }
    std::cout << "\nThe window of Marrowbox opens on all this. Quit it in its menu, or press Ctrl-C here."
              << std::endl;
    auto window = ProcessRunner::run(MARROWBOX_PROGRAM, {}, windowEnvironment(session, folder),
                                     std::move(surroundings), stop);
    ProcessRunner::Result result;
    try {
        result = co_await std::move(window);
    } catch (const CancellationError&) {
        co_return; // the demonstration is over, whichever way its window is closed
    }
    if (result.status != 0)
        throw BackupError("The window could not be shown. " + result.output);
}

} // namespace marrowbox::demo
