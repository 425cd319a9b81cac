#include "Browser.h"
#include "StoreWorld.h"
#include "Web.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::Browser;
using test::StoreWorld;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

namespace {

GoogleAccount bert() {
    return {.id = "bert", .email = "bert@example.org", .name = "Bert", .canSendEmail = true};
}

} // namespace

TEST(Accounts, makeTheFirstThatMaySendTheSenderOfAllMail) {
    StoreWorld world;
    Browser browser(world);
    AppStore& store = world.start();
    store.connect(true, std::nullopt);
    browser.consent(test::anna());
    EXPECT_THAT(world.configuration().accounts, ElementsAre(test::anna()));
    EXPECT_EQ(world.configuration().email, test::mailToAnna());
    EXPECT_EQ(world.written(), world.configuration());
    EXPECT_THAT(*world.state().availableCredentials, ElementsAre("anna"));
    EXPECT_FALSE(*world.state().isConnecting);
    EXPECT_EQ(world.error(), "");
}

TEST(Accounts, leaveTheMailAloneWhenASecondOneComes) {
    StoreWorld world;
    Browser browser(world);
    AppStore& store = world.start();
    store.connect(true, std::nullopt);
    browser.consent(test::anna());
    store.connect(false, std::nullopt);
    EXPECT_THAT(browser.scope(), Not(HasSubstr("gmail")));
    browser.consent(bert());
    EXPECT_THAT(world.configuration().accounts, ElementsAre(test::anna(), bert()));
    EXPECT_EQ(world.configuration().email, test::mailToAnna());
    EXPECT_THAT(*world.state().availableCredentials, UnorderedElementsAre("anna", "bert"));
}

TEST(Accounts, areRefreshedInTheirPlaceWhenTheyConnectAgain) {
    StoreWorld world;
    Browser browser(world);
    AppStore& store = world.start();
    store.connect(true, std::nullopt);
    browser.consent(test::anna());
    store.connect(false, std::nullopt);
    browser.consent(bert());
    GoogleAccount renamed = test::anna();
    renamed.name = "Anna B.";
    store.connect(true, world.configuration().accounts[0]);
    EXPECT_EQ(browser.hint(), "anna@example.org");
    browser.consent(renamed);
    EXPECT_THAT(world.configuration().accounts, ElementsAre(renamed, bert()));
    EXPECT_EQ(world.configuration().email, test::mailToAnna());
}

TEST(Accounts, keepLeaveToSendWhenTheyConnectAgainWithoutAskingForIt) {
    StoreWorld world;
    world.write(test::oneUnit(world));
    Browser browser(world);
    AppStore& store = world.start();
    store.connect(false, world.configuration().accounts[0]);
    EXPECT_THAT(browser.scope(), HasSubstr("gmail.send"));
    browser.consent(test::anna());
    EXPECT_EQ(world.configuration().email.accountID, "") << "the user did not ask to send from it";
    EXPECT_EQ(world.configuration().email.recipient, "anna@example.org");
}

TEST(Accounts, signInOneAtATime) {
    StoreWorld world;
    Browser browser(world);
    AppStore& store = world.start();
    store.connect(false, std::nullopt);
    store.connect(false, std::nullopt);
    world.time.settle();
    EXPECT_TRUE(*world.state().isConnecting);
    EXPECT_EQ(world.desktop.count("openPage"), 1U);
}

TEST(Accounts, askForTheClientWhenThereIsNone) {
    StoreWorld world;
    world.bundledClient.reset();
    AppStore& store = world.start();
    store.connect(false, std::nullopt);
    store.connect(false, std::nullopt);
    world.time.settle();
    EXPECT_THAT(world.desktop.calls(),
                Contains("chooseJSONFile Choose the Desktop OAuth client JSON downloaded from Google Cloud.")
                    .Times(1));
    EXPECT_EQ(world.desktop.count("openPage"), 0U);
    EXPECT_FALSE(*world.state().isConnecting);
}

TEST(Accounts, sayNothingWhenTheUserCancelsTheSignIn) {
    StoreWorld world;
    AppStore& store = world.start();
    store.connect(false, std::nullopt);
    world.time.settle();
    store.cancelSignIn();
    world.time.settle();
    EXPECT_FALSE(*world.state().isConnecting);
    EXPECT_EQ(world.error(), "");
    EXPECT_THAT(world.configuration().accounts, IsEmpty());
}

TEST(Accounts, tellWhyASignInFailed) {
    StoreWorld world;
    world.desktop.opensPages = false;
    AppStore& store = world.start();
    store.connect(false, std::nullopt);
    world.time.settle();
    EXPECT_EQ(world.error(), "Could not open your browser.");
    EXPECT_FALSE(*world.state().isConnecting);
}

TEST(Accounts, canConnectAgainAfterTheTimeLimitOfASignIn) {
    StoreWorld world;
    Browser browser(world);
    AppStore& store = world.start();
    store.connect(false, std::nullopt);
    world.time.advance(301);
    EXPECT_EQ(world.error(), "Google sign-in timed out. Please try again.");
    store.connect(false, std::nullopt);
    browser.consent(test::anna());
    EXPECT_THAT(world.configuration().accounts, SizeIs(1));
}

TEST(Accounts, areNotDisconnectedWhileABackupOrTheSenderNeedsThem) {
    const std::string refusal =
        "Remove this account’s backups and choose another notification sender before disconnecting it.";
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.accounts.push_back(bert());
    configuration.email.accountID = bert().id; // with the provider disabled
    AppStore& store = world.startWith(configuration);
    store.removeAccount(test::anna());
    EXPECT_EQ(world.error(), refusal);
    store.dismissError();
    store.removeAccount(bert());
    EXPECT_EQ(world.error(), refusal);
    EXPECT_EQ(world.configuration(), configuration);
    EXPECT_TRUE(AppCredentials(world.data / "Credentials").contains("google.anna"));
}

TEST(Accounts, loseTheirCredentialWhenTheyAreDisconnected) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.accounts.push_back(bert());
    world.addCredential(bert());
    AppStore& store = world.startWith(configuration);
    store.removeAccount(world.configuration().accounts[1]);
    EXPECT_THAT(world.configuration().accounts, ElementsAre(test::anna()));
    EXPECT_THAT(*world.state().availableCredentials, ElementsAre("anna"));
    EXPECT_FALSE(AppCredentials(world.data / "Credentials").contains("google.bert"));
    EXPECT_EQ(world.written(), world.configuration());
}

TEST(Accounts, stayInTheListWhenTheirCredentialCannotBeRemoved) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.clear();
    AppStore& store = world.startWith(configuration);
    fs::permissions(world.data / "Credentials", fs::perms::owner_all | fs::perms::group_read);
    store.removeAccount(test::anna());
    EXPECT_EQ(world.error(), "Credential storage permissions are unsafe. Credentials were not accessed.");
    EXPECT_THAT(world.configuration().accounts, ElementsAre(test::anna()));
}

TEST(Accounts, stayAvailableWhileTheCredentialStoreCannotTell) {
    StoreWorld world;
    world.startWith(test::oneUnit(world));
    EXPECT_THAT(*world.state().availableCredentials, ElementsAre("anna"));
    fs::permissions(world.data / "Credentials", fs::perms::owner_all | fs::perms::group_read);
    world.time.advance(60);
    EXPECT_THAT(*world.state().availableCredentials, ElementsAre("anna"));
    EXPECT_EQ(world.error(), "");
}

TEST(Accounts, areLeftAloneWithTheirCredentialsByAProgramThatMayNotWrite) {
    StoreWorld world;
    AppConfiguration later = test::oneUnit(world);
    later.schemaVersion = 2;
    later.units.clear();
    AppStore& store = world.startWith(later);
    store.removeAccount(test::anna());
    EXPECT_EQ(world.error(),
              "Configuration could not be loaded. It has been preserved; automatic backups are paused.");
    EXPECT_TRUE(AppCredentials(world.data / "Credentials").contains("google.anna"));
    EXPECT_THAT(world.configuration().accounts, ElementsAre(test::anna()));
}

TEST(Accounts, becomeTheSenderWhenTheyConnectToSend) {
    StoreWorld world;
    Browser browser(world);
    AppStore& store = world.start();
    store.connect(true, std::nullopt);
    browser.consent(test::anna());
    store.connect(true, std::nullopt);
    browser.consent(bert());
    EXPECT_EQ(world.configuration().email.accountID, "bert");
    EXPECT_EQ(world.configuration().email.recipient, "anna@example.org") << "a recipient that is there stays";
    EXPECT_EQ(world.written(), world.configuration());
}

} // namespace marrowbox
