// Another user of the machine, who may write to the data folder, or made it before.
#include "StoreWorld.h"
#include "Support/Stranger.h"
#include "Support/TreeState.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>

namespace marrowbox::test {

using testing::EndsWith;

namespace {

class SharedDataFolder : public testing::Test {
  protected:
    void SetUp() override {
        if (const auto reason = reasonForNoStranger())
            GTEST_SKIP() << *reason;
        fs::permissions(world.home, fs::perms(0755));
        makeDirectory(world.data, 0755);
        makeDirectory(theirs, 0777);
    }

    /// Starts the program on what the stranger did: it says so, changes nothing of it, and nothing at all
    /// later.
    void expectRefused(const std::string& what, const std::string& ending) {
        if (world.store)
            world.end();
        const std::string before = treeState(theirs);
        world.start();
        EXPECT_THAT(world.error(), EndsWith(ending)) << what;
        EXPECT_EQ(treeState(theirs), before) << what;
        EXPECT_THROW(world.store->persist(), std::exception) << what;
    }

    StoreWorld world;
    const fs::path configuration = world.data / "Configuration.json";
    const fs::path client = world.data / "GoogleOAuth.json";
    const fs::path lock = world.data / ".application.lock";
    const fs::path theirs = world.home / "Theirs";
};

void writeAs(mode_t mode, const fs::path& path, std::string_view text) {
    writeAll(openFile(path, O_WRONLY | O_CREAT, mode), text);
    fs::permissions(path, fs::perms(mode));
}

const std::string foreignFolder = "belongs to another user. Nothing in it was changed.";
const std::string foreignFile = "belongs to another user. It was left unchanged.";

} // namespace

TEST_F(SharedDataFolder, isRefusedWhenAnotherUserMadeIt) {
    world.write(oneUnit(world));
    giveTreeToStranger(world.data);
    const std::string before = treeState(world.data);
    expectRefused("a folder", foreignFolder);
    EXPECT_EQ(treeState(world.data), before);
    fs::remove_all(world.data);
    giveToStranger(theirs);
    fs::create_symlink(theirs, world.data);
    expectRefused("a link to a folder", foreignFolder);
    EXPECT_TRUE(fs::is_empty(theirs));
}

TEST_F(SharedDataFolder, givesNoConfigurationOfAnotherUser) {
    world.write(oneUnit(world));
    fs::permissions(configuration, fs::perms(0644));
    giveToStranger(configuration);
    const std::string before = readFile(configuration);
    expectRefused("a file", foreignFile);
    EXPECT_EQ(readFile(configuration), before);
    EXPECT_EQ(linkStatus(configuration)->st_uid, stranger);

    fs::rename(configuration, theirs / "planted.json");
    fs::create_symlink(theirs / "planted.json", configuration);
    expectRefused("a link to a file of his", foreignFile);
    fs::remove(configuration);

    writeAs(0600, world.home / "own.json", before);
    fs::create_symlink(world.home / "own.json", configuration);
    giveToStranger(configuration);
    expectRefused("a link of his to one's own file", foreignFile);
    EXPECT_TRUE(fs::is_symlink(configuration));
    EXPECT_EQ(readFile(world.home / "own.json"), before);
}

TEST_F(SharedDataFolder, neverKeepsTheProgramWaiting) {
    {
        const EndlessPipe pipe(configuration);
        expectRefused("his pipe", foreignFile);
    }
    fs::remove(configuration);
    ASSERT_EQ(::mkfifo(configuration.c_str(), 0600), 0);
    expectRefused("a pipe", "Invalid argument");
    EXPECT_TRUE(fs::is_fifo(configuration));
    fs::remove(configuration);

    AppConfiguration imported = oneUnit(world);
    imported.usesImportedClient = true;
    world.write(imported);
    const std::string before = readFile(configuration);
    {
        const EndlessPipe pipe(client);
        expectRefused("his pipe in place of the client", foreignFile);
    }
    fs::remove(client);
    ASSERT_EQ(::mkfifo(client.c_str(), 0600), 0);
    expectRefused("a pipe in place of the client", "Invalid argument");
    EXPECT_EQ(readFile(configuration), before);
}

TEST_F(SharedDataFolder, givesNoClientOfAnotherUser) {
    AppConfiguration imported = oneUnit(world);
    imported.usesImportedClient = true;
    world.write(imported);
    fs::copy(*world.bundledClient, client);
    giveToStranger(client);
    expectRefused("a client", foreignFile);
    EXPECT_FALSE(*world.state().auth);
}

TEST_F(SharedDataFolder, isLockedThroughNoLinkAndByNobodyElse) {
    writeAs(0666, theirs / "kept", "theirs");
    fs::create_symlink(theirs / "kept", lock);
    expectRefused("a link", "Could not open the backup lock. Check destination permissions.");
    fs::remove(lock);
    fs::create_directory(lock);
    expectRefused("a folder", "Could not open the backup lock. Check destination permissions.");
    fs::remove(lock);
    writeAs(0666, lock, "theirs");
    giveToStranger(lock);
    const StrangerAtWork holder([&] {
        const int file = ::open(lock.c_str(), O_RDWR | O_CLOEXEC);
        return file >= 0 && ::flock(file, LOCK_EX | LOCK_NB) == 0;
    });
    ASSERT_TRUE(holder.isReady());
    expectRefused("a lock that he holds", "This backup is already in use. Wait for the other job to finish.");
    EXPECT_EQ(readFile(lock), "theirs");
    EXPECT_FALSE(linkStatus(configuration));
}

TEST_F(SharedDataFolder, keepsWhatOnlyLooksLikeOnesOwnLeftovers) {
    const fs::path planted = world.data / ".Configuration.json.0123456789abcdef";
    fs::permissions(world.data, fs::perms(0777));
    ASSERT_TRUE(doneByStranger(
        [&] { return ::open(planted.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600) >= 0; }));
    world.start();
    EXPECT_TRUE(linkStatus(planted));
    EXPECT_EQ(linkStatus(configuration)->st_mode, mode_t(S_IFREG | 0600));
}

} // namespace marrowbox::test
