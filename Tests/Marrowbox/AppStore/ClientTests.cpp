#include "StoreWorld.h"

#include "Models/BackupError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace marrowbox {

using test::StoreWorld;
using testing::HasSubstr;

namespace {

constexpr const char* ownClient =
    R"({"installed":{"client_id":"own.apps.googleusercontent.com","client_secret":"mine","project_id":"own project"}})";

fs::path write(const fs::path& file, std::string_view text) {
    writeAll(openFile(file, O_WRONLY | O_CREAT | O_TRUNC, 0644), text);
    return file;
}

void import(StoreWorld& world, std::optional<fs::path> file) {
    world.desktop.choose(std::move(file));
    world.store->importClient();
    world.time.settle();
}

} // namespace

TEST(Client, isCopiedByteForByteAndPrivatelyWhenItIsImported) {
    StoreWorld world;
    AppStore& store = world.start();
    import(world, write(world.home / "client.json", ownClient));
    EXPECT_EQ(world.error(), "");
    EXPECT_EQ(*world.state().credentialProject, "own project");
    EXPECT_EQ((*world.state().auth)->client().client_id, "own.apps.googleusercontent.com");
    EXPECT_EQ(readFile(world.data / "GoogleOAuth.json"), ownClient);
    struct stat status{};
    ASSERT_EQ(::stat((world.data / "GoogleOAuth.json").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    EXPECT_TRUE(world.written().usesImportedClient);
    world.end();
    world.start();
    EXPECT_EQ(*world.state().credentialProject, "own project") << "at the next start as well";
    (void)store;
}

TEST(Client, stayTheOldOneWhenTheNewOneDoesNotParse) {
    StoreWorld world;
    world.start();
    const auto before = *world.state().auth;
    import(world, write(world.home / "client.json", "{\"installed\": 5}"));
    EXPECT_NE(world.error(), "");
    EXPECT_EQ(*world.state().auth, before);
    EXPECT_EQ(*world.state().credentialProject, "Bundled project");
    EXPECT_FALSE(fs::exists(world.data / "GoogleOAuth.json"));
    EXPECT_FALSE(world.configuration().usesImportedClient);
}

TEST(Client, isNotTouchedWhenTheUserChoosesNone) {
    StoreWorld world;
    world.start();
    import(world, std::nullopt);
    EXPECT_EQ(world.error(), "");
    EXPECT_EQ(*world.state().credentialProject, "Bundled project");
}

TEST(Client, ofTheBuildComesBackWhenTheUserWantsIt) {
    StoreWorld world;
    AppStore& store = world.start();
    import(world, write(world.home / "client.json", ownClient));
    store.useBundledClient();
    EXPECT_EQ(*world.state().credentialProject, "Bundled project");
    EXPECT_FALSE(world.written().usesImportedClient);
    EXPECT_TRUE(fs::exists(world.data / "GoogleOAuth.json")) << "the import is kept";
}

TEST(Client, ofABuildWithoutOneCannotComeBack) {
    StoreWorld world;
    world.bundledClient.reset();
    AppStore& store = world.start();
    EXPECT_EQ(*world.state().auth, nullptr);
    store.useBundledClient();
    EXPECT_EQ(world.error(), "This build does not include a Google OAuth client.");
}

TEST(Client, isTheOneOfTheBuildWhenTheImportIsGone) {
    StoreWorld world;
    world.startWith({.usesImportedClient = true});
    EXPECT_EQ(*world.state().credentialProject, "Bundled project");
    EXPECT_TRUE(world.configuration().usesImportedClient);
}

TEST(Client, isNoneWhenTheImportIsGoneAndTheBuildHasNone) {
    StoreWorld world;
    world.bundledClient.reset();
    world.startWith({.usesImportedClient = true});
    EXPECT_EQ(*world.state().auth, nullptr);
    EXPECT_FALSE(world.written().usesImportedClient);
    EXPECT_EQ(world.error(), "");
}

TEST(Client, thatIsDamagedStopsAllWritingUntilTheNextStart) {
    StoreWorld world;
    world.write({.usesImportedClient = true});
    write(world.data / "GoogleOAuth.json", "{");
    world.start();
    EXPECT_NE(world.error(), "");
    EXPECT_FALSE(world.store->configurationIsReadable());
    EXPECT_EQ(readFile(world.data / "GoogleOAuth.json"), "{");
}

TEST(Client, withoutAProjectIsCalledGoogleCloud) {
    StoreWorld world;
    world.start();
    import(world,
           write(world.home / "client.json",
                 R"({"installed":{"client_id":"own.apps.googleusercontent.com","client_secret":"mine"}})"));
    EXPECT_EQ(*world.state().credentialProject, "Google Cloud");
}

TEST(Client, ofAnotherCopyOfTheProgramIsNotReplaced) {
    StoreWorld first;
    first.start();
    StoreWorld second;
    fs::create_directory_symlink(first.data, second.data);
    second.start();
    import(second, write(second.home / "client.json", ownClient));
    EXPECT_THAT(second.error(), HasSubstr("It has been preserved"));
    EXPECT_FALSE(fs::exists(first.data / "GoogleOAuth.json"));
}

TEST(LoginItem, isReadAtTheStart) {
    StoreWorld world;
    world.desktop.loginItem = LoginItemStatus::requiresApproval;
    world.start();
    EXPECT_FALSE(*world.state().startAtLogin);
    EXPECT_TRUE(*world.state().loginRequiresApproval);
}

TEST(LoginItem, isSwitchedOnAndOff) {
    StoreWorld world;
    AppStore& store = world.start();
    store.setLogin(true);
    EXPECT_TRUE(*world.state().startAtLogin);
    EXPECT_EQ(world.desktop.count("openLoginItemSettings"), 0U);
    store.setLogin(false);
    EXPECT_FALSE(*world.state().startAtLogin);
    EXPECT_EQ(world.desktop.loginItem, LoginItemStatus::disabled);
}

TEST(LoginItem, leadsTheUserToWhereItIsApproved) {
    StoreWorld world;
    world.desktop.registered = LoginItemStatus::requiresApproval;
    AppStore& store = world.start();
    store.setLogin(true);
    EXPECT_FALSE(*world.state().startAtLogin);
    EXPECT_TRUE(*world.state().loginRequiresApproval);
    EXPECT_EQ(world.desktop.count("openLoginItemSettings"), 1U);
}

TEST(LoginItem, staysAsItIsWhenItCannotBeChanged) {
    StoreWorld world;
    world.desktop.loginItem = LoginItemStatus::enabled;
    AppStore& store = world.start();
    world.desktop.registrationFailure = std::make_exception_ptr(BackupError("The disk is full."));
    store.setLogin(false);
    EXPECT_EQ(world.error(), "Could not change start at login: The disk is full.");
    EXPECT_TRUE(*world.state().startAtLogin);
}

} // namespace marrowbox
