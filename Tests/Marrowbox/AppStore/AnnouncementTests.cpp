#include "Browser.h"
#include "StoreWorld.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>

namespace marrowbox {

using test::StoreWorld;

namespace {

/// A published field, how it reads as text, and something that changes it.
struct Announced {
    std::string name;
    StoreField field;
    std::function<std::string(const AppState&)> read;
    std::function<void(StoreWorld&, AppStore&)> change;

    friend std::ostream& operator<<(std::ostream& stream, const Announced& announced) {
        return stream << announced.name;
    }
};

std::string text(bool value) {
    return value ? "yes" : "no";
}

std::string text(const std::optional<std::string>& value) {
    return value.value_or("none");
}

std::string text(const std::optional<Uuid>& value) {
    return value ? value->text() : "none";
}

void backUp(StoreWorld& world, AppStore& store) {
    store.run(world.unit(), 0);
    world.time.settle();
}

void loseTheDisk(StoreWorld& world, AppStore& store) {
    fs::remove_all(world.disk);
    store.reloadSnapshots();
    world.time.settle();
}

void mount(StoreWorld& world, AppStore& store) {
    backUp(world, store);
    store.explore((*world.state().snapshots)->front());
    world.time.settle();
}

void failToMount(StoreWorld& world, AppStore& store) {
    world.machine->answer("hdiutil create", test::ScriptedMachine::Result{1, ""});
    mount(world, store);
}

void importClient(StoreWorld& world, AppStore& store) {
    writeAll(openFile(world.home / "client.json", O_WRONLY | O_CREAT),
             R"({"installed":{"client_id":"own.apps.googleusercontent.com","client_secret":"mine"}})");
    world.desktop.choose(world.home / "client.json");
    store.importClient();
    world.time.settle();
}

void loseTheCredential(StoreWorld& world, AppStore& store) {
    world.removeCredential(test::anna());
    store.refreshCredentialAvailability();
}

void needApproval(StoreWorld& world, AppStore& store) {
    world.desktop.registered = LoginItemStatus::requiresApproval;
    store.setLogin(true);
}

std::string numberOf(std::size_t count) {
    return std::to_string(count);
}

std::vector<Announced> allAnnounced() {
    using Field = StoreField;
    using State = AppState;
    return {
        {"configuration", Field::configuration,
         [](const State& s) { return numberOf(s.configuration->runs.size()); }, backUp},
        {"selectedUnitID", Field::selectedUnitID, [](const State& s) { return text(*s.selectedUnitID); },
         [](StoreWorld&, AppStore& store) { store.select(std::nullopt); }},
        {"snapshots", Field::snapshots, [](const State& s) { return numberOf((*s.snapshots)->size()); },
         backUp},
        {"storageUsage", Field::storageUsage,
         [](const State& s) { return numberOf(s.storageUsage->bySnapshot.size()); }, backUp},
        {"isReadingHistory", Field::isReadingHistory,
         [](const State& s) { return text(*s.isReadingHistory); },
         [](StoreWorld& world, AppStore& store) {
             store.reloadSnapshots();
             world.time.settle();
         }},
        {"destinationIssue", Field::destinationIssue,
         [](const State& s) { return text(*s.destinationIssue); }, loseTheDisk},
        {"activeUnitID", Field::activeUnitID, [](const State& s) { return text(*s.activeUnitID); }, backUp},
        {"progress", Field::progress, [](const State& s) { return *s.progress; }, backUp},
        {"errorMessage", Field::errorMessage, [](const State& s) { return text(*s.errorMessage); },
         [](StoreWorld&, AppStore& store) { store.removeAccount(test::anna()); }},
        {"isConnecting", Field::isConnecting, [](const State& s) { return text(*s.isConnecting); },
         [](StoreWorld&, AppStore& store) { store.connect(false, std::nullopt); }},
        {"isExploring", Field::isExploring, [](const State& s) { return text(*s.isExploring); }, mount},
        {"mounted", Field::mounted, [](const State& s) { return numberOf(s.mounted->size()); }, mount},
        {"mountIssue", Field::mountIssue, [](const State& s) { return text(*s.mountIssue); }, failToMount},
        {"auth", Field::auth, [](const State& s) { return (*s.auth)->client().client_id; }, importClient},
        {"credentialProject", Field::credentialProject, [](const State& s) { return *s.credentialProject; },
         importClient},
        {"showSettings", Field::showSettings, [](const State& s) { return text(*s.showSettings); },
         [](StoreWorld&, AppStore& store) { store.showSettings(true); }},
        {"settingsTab", Field::settingsTab, [](const State& s) { return std::to_string(*s.settingsTab); },
         [](StoreWorld&, AppStore& store) { store.showSettingsTab(2); }},
        {"showNewUnit", Field::showNewUnit, [](const State& s) { return text(*s.showNewUnit); },
         [](StoreWorld&, AppStore& store) { store.showNewUnit(true); }},
        {"availableCredentials", Field::availableCredentials,
         [](const State& s) { return numberOf(s.availableCredentials->size()); }, loseTheCredential},
        {"startAtLogin", Field::startAtLogin, [](const State& s) { return text(*s.startAtLogin); },
         [](StoreWorld&, AppStore& store) { store.setLogin(true); }},
        {"loginRequiresApproval", Field::loginRequiresApproval,
         [](const State& s) { return text(*s.loginRequiresApproval); }, needApproval},
    };
}

class Announcement : public testing::TestWithParam<Announced> {};

} // namespace

TEST_P(Announcement, comesBeforeTheChangeAndAfterIt) {
    const Announced& announced = GetParam();
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    const std::string before = announced.read(store.state());
    std::string known = before;
    int changes = 0;
    bool isAnnounced = false;
    QObject::connect(&store, &AppStore::willChange, [&](StoreField field) {
        if (field != announced.field)
            return;
        EXPECT_EQ(announced.read(store.state()), known) << "the old value, or a change that nobody announced";
        isAnnounced = true;
    });
    QObject::connect(&store, &AppStore::changed, [&](StoreField field) {
        if (field != announced.field)
            return;
        EXPECT_TRUE(std::exchange(isAnnounced, false));
        const std::string now = announced.read(store.state());
        changes += now != known ? 1 : 0;
        known = now;
    });
    announced.change(world, store);
    EXPECT_GE(changes, 1);
    EXPECT_EQ(announced.read(store.state()), known) << "the last change was announced";
}

INSTANTIATE_TEST_SUITE_P(Of, Announcement, testing::ValuesIn(allAnnounced()),
                         [](const auto& info) { return info.param.name; });

TEST(Announcements, ofCredentialsComeOnlyWhenSomethingChanged) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    world.time.advance(5);
    int announcements = 0;
    QObject::connect(&store, &AppStore::changed, [&](StoreField) { ++announcements; });
    world.time.advance(3600);
    EXPECT_EQ(announcements, 0) << "a tick with nothing to do redraws nothing";
    world.removeCredential(test::anna());
    world.time.advance(60);
    EXPECT_EQ(announcements, 1);
}

} // namespace marrowbox
