#include "Gallery/ContentWorld.h"
#include "Gallery/Scene.h"

#include <algorithm>
#include <iterator>

namespace marrowbox::gallery {

namespace {

constexpr QSize least(880, 640);
constexpr QSize tall(1060, 1720);
constexpr QSize large(3840, 2160);
constexpr std::size_t usual = 9;

using Script = std::function<void(ContentWorld&)>;

Scene scene(const char* name, Script script, QSize size = QSize(1060, 740)) {
    return {.name = QStringLiteral("content-") + QLatin1String(name),
            .component = QStringLiteral("qrc:/Marrowbox/ContentView/MainView.qml"),
            .size = size,
            .state = [script = std::move(script)](QObject* parent) {
                auto* const world = new ContentWorld(parent);
                script(*world);
                return QVariantMap{{QStringLiteral("model"), QVariant::fromValue(&world->window())}};
            }};
}

/// A backup in daily use, and then what the scene makes of it.
Script used(Script change = [](ContentWorld&) {}) {
    return [change = std::move(change)](ContentWorld& world) {
        world.beginWithBackups();
        world.addHistory(usual);
        change(world);
    };
}

void rename(ContentWorld& world) {
    world.state().configuration.change([](AppConfiguration& current) {
        SyncUnit& unit = current.units.front();
        unit.name =
            "Scans of all letters, contracts and receipts of the years before we moved to the new house";
        unit.source.name = "Scans of all letters, contracts and receipts of the years before we moved";
        unit.destinationPath = "/media/anna/Backups on the large disk in the study/Scans of all letters/2026";
        current.accounts.front().email = "anna.with.a.very.long.address.indeed@correspondence.example.org";
    });
}

void disconnect(ContentWorld& world) {
    world.state().availableCredentials.set({});
}

void colour(ContentWorld& world) {
    world.state().configuration.change(
        [](AppConfiguration& current) { current.units.front().theme = AccentTheme::sunshine; });
}

std::vector<Scene> pageScenes() {
    return {
        scene("nothing", [](ContentWorld& world) { world.begin({}); }),
        scene("first", [](ContentWorld& world) { world.beginWithBackups(); }),
        scene("idle", used()),
        scene("idle-least", used(), least),
        scene("idle-tall", used(), tall),
        scene("idle-4k", used(), large),
        scene("sunshine", used(colour)),
        scene("long-names", used(rename), least),
        scene("long-history",
              [](ContentWorld& world) {
                  world.beginWithBackups();
                  world.addHistory(5000);
              }),
        scene("reading",
              [](ContentWorld& world) {
                  world.beginWithBackups();
                  world.endLastRun(RunOutcome::succeeded, "");
                  world.state().isReadingHistory.set(true);
              }),
    };
}

std::vector<Scene> stateScenes() {
    return {
        scene("busy",
              used([](ContentWorld& world) { world.run("Downloading 129–160 of 512 changed files…"); })),
        scene("busy-uncounted", used([](ContentWorld& world) { world.run("Reading Google Drive…"); })),
        scene("failed", used([](ContentWorld& world) {
                  world.endLastRun(RunOutcome::failed, "Not enough free space at the destination.");
              })),
        scene("cancelled", used([](ContentWorld& world) {
                  world.endLastRun(
                      RunOutcome::cancelled,
                      "Cancelled before completion. Previously completed snapshots remain available.");
              })),
        scene("disconnected", used(disconnect), least),
        scene("waiting-for-google", used([](ContentWorld& world) {
                  disconnect(world);
                  world.state().isConnecting.set(true);
              })),
        scene("no-destination",
              [](ContentWorld& world) {
                  world.beginWithBackups();
                  world.endLastRun(RunOutcome::failed, "Connect the destination and try again.");
                  world.state().destinationIssue.set(
                      "The backup destination is not available. Connect it and try again.");
              }),
        scene("mounted", used([](ContentWorld& world) { world.mountNewest(); }), tall),
        scene("exploring", used([](ContentWorld& world) { world.state().isExploring.set(true); }), tall),
        scene("mount-issue", used([](ContentWorld& world) {
                  world.state().mountIssue.set(
                      "The snapshot is still in use. Close its files and try again.");
              })),
        scene("error", used([](ContentWorld& world) {
                  world.state().errorMessage.set(
                      "Connect this unit’s Google account and install rclone before backing up.");
              })),
        scene("remove",
              used([](ContentWorld& world) { world.window().unitPage()->setConfirmsRemove(true); })),
        scene("activity", used([](ContentWorld& world) {
                  world.endLastRun(RunOutcome::failed, "Not enough free space at the destination.");
                  world.window().unitPage()->setShowsActivity(true);
              }),
              tall),
    };
}

} // namespace

std::vector<Scene> contentScenes() {
    std::vector<Scene> scenes = pageScenes();
    std::ranges::move(stateScenes(), std::back_inserter(scenes));
    return scenes;
}

} // namespace marrowbox::gallery
