#include "Marrowbox/SetupViews/WelcomeModel.h"

#include "SetupWorld.h"

#include <gtest/gtest.h>

namespace marrowbox {

using test::SetupWorld;

TEST(WelcomeModel, leadsToAnAccountFirstAndThenToABackup) {
    SetupWorld world;
    AppStore& store = world.startWith({});
    WelcomeModel welcome(world.store);
    EXPECT_FALSE(welcome.hasAccounts());
    EXPECT_EQ(welcome.connection()->title(), "Connect Google account");
    welcome.connection()->connectAccount();
    EXPECT_TRUE(welcome.connection()->isWaiting());
    EXPECT_EQ(welcome.connection()->title(), "Waiting for Google…");
    world.consent(test::anna());
    EXPECT_EQ(world.error(), "");
    EXPECT_TRUE(welcome.hasAccounts());
    EXPECT_EQ(welcome.accountCount(), "1 Google account connected");
    welcome.createBackup();
    EXPECT_TRUE(*store.state().showNewUnit);
}

TEST(WelcomeModel, countsTheAccounts) {
    SetupWorld world;
    world.startWith({test::anna(), test::ben()});
    EXPECT_EQ(WelcomeModel(world.store).accountCount(), "2 Google accounts connected");
}

TEST(WelcomeModel, cancelsASignInThatWaits) {
    SetupWorld world;
    world.startWith({});
    WelcomeModel welcome(world.store);
    welcome.connection()->connectAccount();
    world.time.settle();
    welcome.connection()->cancel();
    world.time.settle();
    EXPECT_FALSE(welcome.connection()->isWaiting());
    EXPECT_EQ(world.error(), "");
}

TEST(WelcomeModel, makesThreePromises) {
    const QVariantList notes = WelcomeModel::notes();
    ASSERT_EQ(notes.size(), 3);
    EXPECT_EQ(notes.at(0).toMap().value("title"), "History, kept");
    EXPECT_EQ(notes.at(1).toMap().value("icon"), "doc.text");
    EXPECT_EQ(notes.at(2).toMap().value("detail"), "Read-only access to Drive");
}

} // namespace marrowbox
