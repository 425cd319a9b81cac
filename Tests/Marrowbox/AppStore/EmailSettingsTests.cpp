#include "Models/BackupError.h"
#include "StoreWorld.h"
#include "Support/Thrown.h"

#include <gtest/gtest.h>

namespace marrowbox {

using test::StoreWorld;

TEST(EmailSettings, areKeptWhenTheyCanWork) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    store.saveEmail(test::mailToAnna());
    EXPECT_EQ(world.configuration().email, test::mailToAnna());
    EXPECT_EQ(world.written().email, test::mailToAnna());
}

TEST(EmailSettings, areRefusedWithTheReasonWhenTheyCannotWork) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    EmailSettings settings = test::mailToAnna();
    settings.recipient = "nobody";
    EXPECT_EQ(test::thrown<BackupError>([&] { store.saveEmail(settings); }),
              "Enter a valid recipient email address.");
    world.removeCredential(test::anna());
    store.refreshCredentialAvailability();
    EXPECT_EQ(test::thrown<BackupError>([&] { store.saveEmail(test::mailToAnna()); }),
              "Reconnect this Google account before enabling email summaries.");
    EXPECT_EQ(world.configuration().email, EmailSettings());
}

TEST(EmailSettings, goBackToTheOldOnesWhenTheyCannotBeWritten) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    fs::remove(world.data / "Configuration.json");
    fs::create_directory(world.data / "Configuration.json");
    EXPECT_THROW(store.saveEmail(test::mailToAnna()), std::system_error);
    EXPECT_EQ(world.configuration().email, EmailSettings());
}

} // namespace marrowbox
