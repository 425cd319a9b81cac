// The welcome screen and the sheets, in each of their states.
#include "Gallery/Scene.h"

#include "Marrowbox/SetupViews/SettingsModel.h"
#include "Marrowbox/SetupViews/UnitSettingsModel.h"
#include "Marrowbox/SetupViews/WelcomeModel.h"
#include "SetupWorld.h"

#include <memory>

namespace marrowbox::gallery {

namespace {

using test::SetupWorld;

/// A world and the model in it that a screen shows.
class Stage : public QObject {
  public:
    using QObject::QObject;

    SetupWorld world;
    std::unique_ptr<QObject> model; ///< Goes before its world.
};

template <typename Model>
using Prepare = std::function<std::unique_ptr<Model>(SetupWorld&)>;

template <typename Model>
Scene scene(const char* name, const QString& component, Prepare<Model> prepare) {
    const auto state = [prepare = std::move(prepare)](QObject* parent) {
        auto* const stage = new Stage(parent);
        stage->model = prepare(stage->world);
        return QVariantMap{{"model", QVariant::fromValue(static_cast<Model*>(stage->model.get()))}};
    };
    return {.name = QString::fromLatin1(name), .component = component, .size = {880, 640}, .state = state};
}

Scene welcome(const char* name, std::vector<GoogleAccount> accounts, bool isConnecting = false) {
    return scene<WelcomeModel>(name, QStringLiteral("qrc:/Marrowbox/SetupViews/WelcomeView.qml"),
                               [accounts, isConnecting](SetupWorld& world) {
                                   world.startWith(accounts);
                                   if (isConnecting)
                                       world.store->connect(false, std::nullopt);
                                   return std::make_unique<WelcomeModel>(world.store);
                               });
}

Scene newUnit(const char* name, std::vector<GoogleAccount> accounts,
              const std::function<void(SetupWorld&, NewUnitModel&)>& act) {
    return scene<NewUnitModel>(name, QStringLiteral("qrc:/Gallery/Pages/NewUnitStage.qml"),
                               [accounts, act](SetupWorld& world) {
                                   world.startWith(accounts);
                                   auto model = std::make_unique<NewUnitModel>(world.store);
                                   act(world, *model);
                                   return model;
                               });
}

void open(SetupWorld& world, NewUnitModel& model, int row) {
    model.browser()->open(row);
    world.time.settle();
}

void appear(SetupWorld& world, NewUnitModel& model) {
    model.appear();
    world.time.settle();
}

void choose(SetupWorld& world, NewUnitModel& model, const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    world.desktop.choose(folder);
    model.chooseDestination();
    world.time.settle();
}

std::vector<Scene> newUnitScenes() {
    const std::vector<GoogleAccount> both{test::anna(), test::ben()};
    return {
        newUnit("new-unit-no-account", {}, [](SetupWorld&, NewUnitModel&) {}),
        newUnit("new-unit-connecting", {},
                [](SetupWorld& world, NewUnitModel&) { world.store->connect(false, std::nullopt); }),
        newUnit("new-unit-roots", both, appear),
        newUnit("new-unit-loading", both,
                [](SetupWorld& world, NewUnitModel& model) {
                    world.drive.hold("root");
                    appear(world, model);
                    open(world, model, 0);
                }),
        newUnit("new-unit-folders", both,
                [](SetupWorld& world, NewUnitModel& model) {
                    for (const char* name :
                         {"Contracts", "Family photographs", "Invoices 2026", "Recipes",
                          "A very long name that somebody gave to a folder so that everybody "
                          "would know at once what lies in it, and what does not"})
                        world.drive.addFolder("root", std::string(1, name[0]) + "1", name);
                    appear(world, model);
                    open(world, model, 0);
                }),
        newUnit("new-unit-no-subfolders", both,
                [](SetupWorld& world, NewUnitModel& model) {
                    appear(world, model);
                    open(world, model, 1);
                    open(world, model, 0);
                }),
        newUnit("new-unit-failed", both,
                [](SetupWorld& world, NewUnitModel& model) {
                    world.drive.fail("drives",
                                     "Google returned an incomplete folder listing. Please try again.");
                    appear(world, model);
                }),
        newUnit("new-unit-reconnect", both,
                [](SetupWorld& world, NewUnitModel& model) {
                    world.removeCredential(test::anna());
                    world.store->refreshCredentialAvailability();
                    appear(world, model);
                }),
        newUnit("new-unit-ready", both,
                [](SetupWorld& world, NewUnitModel& model) {
                    appear(world, model);
                    open(world, model, 1);
                    model.useFolder();
                    choose(world, model,
                           world.home / "Volumes" / "Backups of the whole family on the large disk");
                }),
        newUnit("new-unit-refused", both,
                [](SetupWorld& world, NewUnitModel& model) {
                    appear(world, model);
                    open(world, model, 0);
                    model.useFolder();
                    choose(world, model,
                           world.home / "Library/CloudStorage/GoogleDrive-anna@example.org/My Drive");
                }),
        newUnit("new-unit-creating", both,
                [](SetupWorld& world, NewUnitModel& model) {
                    appear(world, model);
                    open(world, model, 0);
                    model.useFolder();
                    choose(world, model, world.disk);
                    model.create();
                }),
    };
}

Scene settings(const char* name, SettingsTab tab, AppConfiguration configuration,
               const std::function<void(SetupWorld&, SettingsModel&)>& act) {
    return scene<SettingsModel>(name, QStringLiteral("qrc:/Gallery/Pages/PreferencesStage.qml"),
                                [tab, configuration, act](SetupWorld& world) {
                                    for (const GoogleAccount& account : configuration.accounts)
                                        world.addCredential(account);
                                    world.write(configuration);
                                    world.desktop.registered = LoginItemStatus::requiresApproval;
                                    if (configuration.accounts.empty())
                                        world.rclone.reset();
                                    world.start();
                                    auto model = std::make_unique<SettingsModel>(world.store);
                                    model->showTab(static_cast<int>(tab));
                                    act(world, *model);
                                    return model;
                                });
}

RunRecord unsentRun() {
    SyncUnit unit;
    unit.id = Uuid::random();
    RunRecord run = beginRunRecord(unit, "anna@example.org", true, test::mondayMorning);
    run.outcome = RunOutcome::succeeded;
    run.nextEmailAttempt = test::mondayMorning + 1e6;
    return run;
}

std::vector<Scene> settingsScenes() {
    const AppConfiguration both{.accounts = {test::anna(), test::ben()}, .email = test::mailToAnna()};
    AppConfiguration queued = both;
    queued.runs = {unsentRun(), unsentRun(), unsentRun()};
    const auto nothing = [](SetupWorld&, SettingsModel&) {};
    return {
        settings("settings-general", SettingsTab::general, both, nothing),
        settings("settings-general-attention", SettingsTab::general, {},
                 [](SetupWorld&, SettingsModel& model) { model.general()->setStartsAtLogin(true); }),
        settings("settings-accounts", SettingsTab::accounts, both,
                 [](SetupWorld& world, SettingsModel&) {
                     world.removeCredential(test::ben());
                     world.store->refreshCredentialAvailability();
                 }),
        settings("settings-accounts-none", SettingsTab::accounts, {}, nothing),
        settings("settings-accounts-connecting", SettingsTab::accounts, both,
                 [](SetupWorld& world, SettingsModel&) { world.store->connect(false, std::nullopt); }),
        settings("settings-email-off", SettingsTab::email, {.accounts = {test::anna()}}, nothing),
        settings("settings-email", SettingsTab::email, queued, nothing),
        settings("settings-email-saved", SettingsTab::email, both,
                 [](SetupWorld&, SettingsModel& model) {
                     model.email()->setRecipient("office@example.org");
                     model.email()->save();
                 }),
        settings("settings-email-permission", SettingsTab::email, both,
                 [](SetupWorld&, SettingsModel& model) {
                     model.email()->setAccountID("ben");
                     model.email()->save();
                 }),
        settings("settings-email-no-account", SettingsTab::email, {},
                 [](SetupWorld&, SettingsModel& model) {
                     model.email()->setProvider("gmail");
                     model.email()->save();
                 }),
    };
}

Scene unitSettings(const char* name, const EmailSettings& email,
                   const std::function<void(UnitSettingsModel&)>& act) {
    return scene<UnitSettingsModel>(
        name, QStringLiteral("qrc:/Gallery/Pages/UnitSettingsStage.qml"), [email, act](SetupWorld& world) {
            AppConfiguration configuration = test::oneUnit(world);
            configuration.email = email;
            world.write(configuration);
            world.start();
            auto model = std::make_unique<UnitSettingsModel>(world.store, world.unit());
            act(*model);
            return model;
        });
}

std::vector<Scene> unitSettingsScenes() {
    std::vector<Scene> scenes{
        unitSettings("unit-settings", test::mailToAnna(), [](UnitSettingsModel&) {}),
        unitSettings("unit-settings-weekly-email-off", {},
                     [](UnitSettingsModel& model) {
                         model.setFrequency("weekly");
                         model.setTheme("sunshine");
                         model.setHistory(90);
                     }),
        unitSettings("unit-settings-hourly", test::mailToAnna(),
                     [](UnitSettingsModel& model) {
                         model.setFrequency("hourly");
                         model.setName(" ");
                     }),
        unitSettings("unit-settings-shorten", test::mailToAnna(),
                     [](UnitSettingsModel& model) {
                         model.setHistory(30);
                         model.save();
                     }),
    };
    scenes.at(0).size = {880, 980};
    scenes.at(1).size = {880, 980};
    return scenes;
}

} // namespace

std::vector<Scene> setupScenes() {
    std::vector<Scene> scenes{welcome("welcome", {}), welcome("welcome-connecting", {}, true),
                              welcome("welcome-connected", {test::anna()}),
                              welcome("welcome-connected-two", {test::anna(), test::ben()})};
    for (const auto& family : {newUnitScenes(), settingsScenes(), unitSettingsScenes()})
        scenes.insert(scenes.end(), family.begin(), family.end());
    return scenes;
}

} // namespace marrowbox::gallery
