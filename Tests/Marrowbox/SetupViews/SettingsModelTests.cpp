#include "Marrowbox/SetupViews/SettingsModel.h"

#include "SetupWorld.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace marrowbox {

using test::SetupWorld;

namespace {

GoogleAccount annaWithoutSending() {
    GoogleAccount account = test::anna();
    account.canSendEmail = false;
    return account;
}

QVariantMap row(SettingsModel& settings, int index) {
    return settings.accounts()->accounts().at(index).toMap();
}

/// What the consent page was asked for.
bool asksToSend(const SetupWorld& world) {
    return world.desktop.calls().back().find("gmail.send") != std::string::npos;
}

} // namespace

TEST(SettingsModel, showsTheTabThatTheStoreNames) {
    SetupWorld world;
    AppStore& store = world.startWith({});
    store.showSettings(true);
    SettingsModel settings(world.store);
    EXPECT_EQ(settings.tabs(), QStringList({"General", "Accounts", "Email"}));
    store.showSettingsTab(2);
    EXPECT_EQ(settings.tab(), 2);
    settings.showTab(1);
    EXPECT_EQ(*store.state().settingsTab, 1);
    settings.dismiss();
    EXPECT_FALSE(*store.state().showSettings);
}

TEST(GeneralSettings, startTheProgramAtLogin) {
    SetupWorld world;
    world.startWith({});
    SettingsModel settings(world.store);
    GeneralSettings& general = *settings.general();
    EXPECT_FALSE(general.startsAtLogin());
    general.setStartsAtLogin(true);
    EXPECT_TRUE(general.startsAtLogin());
    EXPECT_FALSE(general.needsApproval());
    general.setStartsAtLogin(false);
    EXPECT_FALSE(general.startsAtLogin());
}

TEST(GeneralSettings, sayThatTheDesktopHasToApprove) {
    SetupWorld world;
    world.desktop.registered = LoginItemStatus::requiresApproval;
    world.startWith({});
    SettingsModel settings(world.store);
    settings.general()->setStartsAtLogin(true);
    EXPECT_FALSE(settings.general()->startsAtLogin());
    EXPECT_TRUE(settings.general()->needsApproval());
    EXPECT_EQ(settings.general()->approvalNote(),
              "Approve Marrowbox in your desktop’s settings → Startup Applications.");
}

TEST(GeneralSettings, warnWhereRcloneIsMissing) {
    SetupWorld world;
    world.startWith({});
    EXPECT_FALSE(SettingsModel(world.store).general()->lacksRclone());
    SetupWorld bare;
    bare.rclone.reset();
    bare.startWith({});
    EXPECT_TRUE(SettingsModel(bare.store).general()->lacksRclone());
    EXPECT_EQ(GeneralSettings::rcloneHint(), "Install it with APT: sudo apt install rclone");
}

TEST(GeneralSettings, tellWhichClientIsInForce) {
    SetupWorld world;
    world.startWith({});
    SettingsModel settings(world.store);
    GeneralSettings& general = *settings.general();
    EXPECT_EQ(general.client(), "Built in");
    EXPECT_EQ(general.project(), "Bundled project");
    const auto file = world.home / "client.json";
    std::ofstream(file) << R"({"installed":{"client_id":"own.apps.googleusercontent.com",)"
                           R"("client_secret":"secret","project_id":"anna-cloud"}})";
    world.desktop.choose(file);
    general.importClient();
    world.time.settle();
    EXPECT_EQ(world.error(), "");
    EXPECT_TRUE(general.usesImportedClient());
    EXPECT_EQ(general.client(), "anna-cloud");
    EXPECT_EQ(general.project(), "anna-cloud");
    general.useBundledClient();
    EXPECT_FALSE(general.usesImportedClient());
    EXPECT_EQ(general.client(), "Built in");
}

TEST(AccountSettings, describeEachAccount) {
    SetupWorld world;
    world.startWith({test::anna(), test::ben()});
    world.removeCredential(test::ben());
    world.store->refreshCredentialAvailability();
    SettingsModel settings(world.store);
    EXPECT_EQ(row(settings, 0).value("email"), "anna@example.org");
    EXPECT_EQ(row(settings, 0).value("grant"), "Drive backup · Gmail sending");
    EXPECT_EQ(row(settings, 0).value("issue"), "");
    EXPECT_EQ(row(settings, 1).value("grant"), "Drive backup");
    EXPECT_EQ(row(settings, 1).value("issue"), "Reconnect required");
}

TEST(AccountSettings, connectAKnownAccountAgainAndKeepItsPermission) {
    SetupWorld world;
    world.startWith({test::anna()});
    SettingsModel settings(world.store);
    settings.accounts()->reconnect("anna");
    world.time.settle();
    EXPECT_TRUE(asksToSend(world));
    EXPECT_NE(world.desktop.calls().back().find("anna%40example.org"), std::string::npos);
    settings.connection()->cancel();
    world.time.settle();
}

TEST(AccountSettings, askForSendingOnlyWhereTheUserWantsIt) {
    SetupWorld world;
    world.startWith({test::ben()});
    SettingsModel settings(world.store);
    settings.accounts()->reconnect("ben");
    world.time.settle();
    EXPECT_FALSE(asksToSend(world));
    settings.connection()->cancel();
    world.time.settle();
    settings.accounts()->enableSending("ben");
    world.time.settle();
    EXPECT_TRUE(asksToSend(world));
    settings.connection()->cancel();
    world.time.settle();
}

TEST(AccountSettings, disconnectAnAccountThatNothingUses) {
    SetupWorld world;
    world.startWith({test::anna(), test::ben()});
    SettingsModel settings(world.store);
    settings.accounts()->disconnectAccount("ben");
    EXPECT_EQ(settings.accounts()->accounts().size(), 1);
    EXPECT_EQ(world.error(), "");
}

TEST(AccountSettings, refuseToDisconnectAnAccountInUse) {
    SetupWorld world;
    world.write(test::oneUnit(world));
    world.start();
    SettingsModel settings(world.store);
    settings.accounts()->disconnectAccount("anna");
    EXPECT_EQ(settings.accounts()->accounts().size(), 1);
    EXPECT_EQ(world.error(), "Remove this account’s backups and choose another notification sender before "
                             "disconnecting it.");
}

TEST(EmailDraft, isSavedOnceItDiffersAndSaysSo) {
    SetupWorld world;
    world.startWith({test::anna()});
    SettingsModel settings(world.store);
    EmailDraft& email = *settings.email();
    EXPECT_FALSE(email.isEdited());
    EXPECT_EQ(email.saveTitle(), "Save email settings");
    email.setProvider("gmail");
    email.setAccountID("anna");
    email.setRecipient("anna@example.org");
    EXPECT_TRUE(email.isEdited());
    email.save();
    EXPECT_EQ(email.error(), "");
    EXPECT_EQ(email.saveTitle(), "Saved");
    EXPECT_FALSE(email.isEdited());
    EXPECT_EQ(world.configuration().email, test::mailToAnna());
    email.setRecipient("ben@example.org");
    EXPECT_EQ(email.saveTitle(), "Save email settings");
}

TEST(EmailDraft, showsWhyItCannotWorkAndKeepsWhatIsStored) {
    SetupWorld world;
    world.startWith({test::anna()});
    SettingsModel settings(world.store);
    EmailDraft& email = *settings.email();
    email.setProvider("gmail");
    email.setRecipient("nobody");
    email.save();
    EXPECT_EQ(email.error(), "Enter a valid recipient email address.");
    EXPECT_FALSE(email.isSaved());
    EXPECT_TRUE(email.isEdited());
    EXPECT_EQ(world.configuration().email, EmailSettings{});
    email.setRecipient("anna@example.org");
    EXPECT_EQ(email.error(), "");
    email.save();
    EXPECT_EQ(email.error(), "Choose a Google account for email summaries.");
}

TEST(EmailDraft, keepsWhatWasEnteredWhenItCannotBeWritten) {
    SetupWorld world;
    world.startWith({test::anna()});
    SettingsModel settings(world.store);
    EmailDraft& email = *settings.email();
    email.setProvider("gmail");
    email.setAccountID("anna");
    email.setRecipient("office@example.org");
    std::filesystem::remove(world.data / "Configuration.json");
    std::filesystem::create_directory(world.data / "Configuration.json");
    email.save();
    EXPECT_NE(email.error(), "");
    EXPECT_FALSE(email.isSaved());
    EXPECT_EQ(world.configuration().email, EmailSettings());
    EXPECT_EQ(email.provider(), "gmail");
    EXPECT_EQ(email.accountID(), "anna");
    EXPECT_EQ(email.recipient(), "office@example.org");
    EXPECT_TRUE(email.isEdited());
    std::filesystem::remove(world.data / "Configuration.json");
    email.save();
    EXPECT_EQ(email.error(), "");
    EXPECT_EQ(world.configuration().email.recipient, "office@example.org");
}

TEST(EmailDraft, asksForThePermissionThatTheSenderLacks) {
    SetupWorld world;
    world.startWith({annaWithoutSending()});
    SettingsModel settings(world.store);
    EmailDraft& email = *settings.email();
    EXPECT_FALSE(email.needsPermission());
    email.setProvider("gmail");
    EXPECT_FALSE(email.needsPermission());
    email.setAccountID("anna");
    EXPECT_TRUE(email.needsPermission());
    EXPECT_EQ(email.permissionTitle(), "Allow Gmail to send summaries…");
    email.askForPermission();
    EXPECT_EQ(email.permissionTitle(), "Waiting for Google…");
    world.time.settle();
    EXPECT_TRUE(asksToSend(world));
    world.consent(test::anna());
    EXPECT_FALSE(email.needsPermission());
    email.setProvider("gmail");
    email.save();
    EXPECT_EQ(email.error(), "");
}

TEST(EmailDraft, asksToReconnectASenderWithoutCredential) {
    SetupWorld world;
    world.startWith({annaWithoutSending(), test::ben()});
    world.removeCredential(test::anna());
    world.store->refreshCredentialAvailability();
    SettingsModel settings(world.store);
    EmailDraft& email = *settings.email();
    email.setProvider("gmail");
    email.setAccountID("anna");
    EXPECT_EQ(email.permissionTitle(), "Reconnect Google account…");
}

TEST(EmailDraft, connectsTheFirstAccountAndTakesItOver) {
    SetupWorld world;
    world.startWith({});
    SettingsModel settings(world.store);
    EmailDraft& email = *settings.email();
    email.setProvider("gmail");
    EXPECT_TRUE(email.needsPermission());
    EXPECT_EQ(email.permissionTitle(), "Connect Google account");
    email.askForPermission();
    world.consent(test::anna());
    EXPECT_EQ(email.provider(), "gmail");
    EXPECT_EQ(email.accountID(), "anna");
    EXPECT_EQ(email.recipient(), "anna@example.org");
    EXPECT_FALSE(email.needsPermission());
    EXPECT_FALSE(email.isEdited());
}

TEST(EmailDraft, keepsWhatTheUserEditedWhenASignInChangesTheSettings) {
    SetupWorld world;
    world.startWith({});
    SettingsModel settings(world.store);
    EmailDraft& email = *settings.email();
    email.setRecipient("office@example.org");
    settings.connection()->connectAccount();
    GoogleAccount account = test::anna();
    account.canSendEmail = false;
    world.consent(account);
    EXPECT_EQ(world.configuration().email.recipient, "anna@example.org");
    EXPECT_EQ(email.recipient(), "office@example.org");
}

TEST(EmailDraft, sendsQueuedMailAgain) {
    SetupWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.email = test::mailToAnna();
    RunRecord run = beginRunRecord(configuration.units[0], "anna@example.org", true, world.time.now());
    run.outcome = RunOutcome::succeeded;
    run.endedAt = world.time.now();
    run.emailAttempts = 3;
    run.nextEmailAttempt = world.time.now() + 900;
    configuration.runs = {run};
    world.write(configuration);
    world.start();
    SettingsModel settings(world.store);
    EmailDraft& email = *settings.email();
    EXPECT_TRUE(email.hasQueued());
    EXPECT_EQ(email.retryTitle(), "Retry 1 queued emails");
    email.retry();
    world.time.settle();
    EXPECT_FALSE(email.hasQueued());
}

} // namespace marrowbox
