#include "Marrowbox/Platform/LinuxDesktop.h"

#include "Marrowbox/Platform/LoginItemSettings.h"
#include "Marrowbox/Platform/SleepInhibition.h"

#include <algorithm>
#include <utility>

namespace marrowbox {

namespace {

std::string valueIn(const Environment& environment, const char* name) {
    const auto found = environment.find(name);
    return found == environment.end() ? std::string() : found->second;
}

} // namespace

LinuxDesktop::LinuxDesktop(LinuxSurroundings surroundings)
    : surroundings_(std::move(surroundings)),
      loginItem_(settingsDirectory(surroundings_.environment), surroundings_.executable),
      launcher_(surroundings_.environment), fileManager_(surroundings_.sessionBus, launcher_) {
}

LoginItemStatus LinuxDesktop::loginItemStatus() {
    return loginItem_.status();
}

void LinuxDesktop::registerLoginItem() {
    loginItem_.enable();
}

void LinuxDesktop::unregisterLoginItem() {
    loginItem_.disable();
}

void LinuxDesktop::openLoginItemSettings() {
    const auto pages = loginItemSettings(valueIn(surroundings_.environment, "XDG_CURRENT_DESKTOP"));
    const bool isOpen = std::ranges::any_of(
        pages, [&](const ProgramCall& page) { return launcher_.start(page.program, page.arguments); });
    if (!isOpen)
        fileManager_.show(loginItem_.entry().parent_path());
}

std::unique_ptr<Activity> LinuxDesktop::beginActivity(std::string reason) {
    return inhibitSleep(surroundings_.systemBus, reason);
}

void LinuxDesktop::observe(DesktopEvents events) {
    wakeWatch_ = std::make_unique<WakeWatch>(surroundings_.systemBus, std::move(events.machineWoke));
    volumeWatch_ = std::make_unique<VolumeWatch>(
        std::move(events.volumeAppeared), std::move(events.volumeWentAway), surroundings_.places.mountList);
}

asio::awaitable<std::optional<fs::path>> LinuxDesktop::chooseJSONFile(std::string message) {
    return surroundings_.chooseJSONFile(std::move(message));
}

asio::awaitable<std::optional<fs::path>> LinuxDesktop::chooseFolder(std::string message) {
    return surroundings_.chooseFolder(std::move(message));
}

bool LinuxDesktop::openPage(const std::string& address) {
    // What is no page might be a file, or an option of the program that opens it.
    if (!address.starts_with("https://") && !address.starts_with("http://"))
        return false;
    return launcher_.run("xdg-open", {address}, surroundings_.openingPatience);
}

void LinuxDesktop::openFolder(const fs::path& folder) {
    fileManager_.show(folder);
}

ByteString LinuxDesktop::makeBookmark(const fs::path& folder) {
    return marrowbox::makeBookmark(folder, surroundings_.places);
}

ResolvedBookmark LinuxDesktop::resolveBookmark(const ByteString& bookmark) {
    return marrowbox::resolveBookmark(bookmark, surroundings_.places);
}

} // namespace marrowbox
