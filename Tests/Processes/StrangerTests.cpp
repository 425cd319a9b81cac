// Another user of the machine, who may write to the temporary folder.
#include "Processes/ProcessRunner.h"

#include "Platform/Files.h"
#include "Support/Children.h"
#include "Support/Coroutine.h"
#include "Support/ScratchFolder.h"
#include "Support/Stranger.h"
#include "Support/TreeState.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <fcntl.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

/// A temporary folder for everybody, and a folder of the stranger's beside it.
class SharedTemporaryFolder : public testing::Test {
  protected:
    void SetUp() override {
        if (const auto reason = reasonForNoStranger())
            GTEST_SKIP() << *reason;
        fs::permissions(scratch.path(), fs::perms(0777));
        makeDirectory(temporary, 0777);
        makeDirectory(theirs, 0777);
        writeAll(openFile(theirs / "output", O_WRONLY | O_CREAT, 0666), "theirs");
        giveTreeToStranger(theirs);
        surroundings.temporaryFolder = temporary;
    }

    /// Runs a child that waits in the middle, while which the stranger does his work on the scratch folder.
    std::string outputWhile(const std::function<void(const fs::path& folder)>& work) {
        const NamedPipe ready(scratch / "ready");
        const NamedPipe go(scratch / "go");
        const std::string script = "echo before; echo ready >" + ready.path().string() + "; read line <" +
                                   go.path().string() + "; echo after";
        auto result = asio::co_spawn(
            pool, ProcessRunner::run("/bin/sh", {"-c", script}, {}, surroundings, {}), asio::use_future);
        EXPECT_EQ(ready.read(), "ready\n");
        const auto names = directoryNames(temporary);
        EXPECT_EQ(names.size(), 1U);
        work(temporary / names.at(0));
        go.write("on\n");
        return result.get().output;
    }

    ScratchFolder scratch;
    const fs::path temporary = scratch / "temporary";
    const fs::path theirs = scratch / "theirs";
    ProcessSurroundings surroundings = ProcessSurroundings::ofThisProcess();
    asio::thread_pool pool{1};
};

} // namespace

TEST_F(SharedTemporaryFolder, doesNotChangeWhatAChildHasSaid) {
    const std::string before = treeState(theirs);
    const std::string output = outputWhile([&](const fs::path& folder) {
        ASSERT_TRUE(doneByStranger([&] {
            return ::rename(folder.c_str(), (temporary / "away").c_str()) == 0 &&
                   ::symlink(theirs.c_str(), folder.c_str()) == 0;
        }));
    });
    EXPECT_EQ(output, "before\nafter\n");
    EXPECT_EQ(treeState(theirs), before);
    EXPECT_EQ(directoryNames(temporary).size(), 2U) << "the link is not ours";
    EXPECT_TRUE(fs::is_empty(temporary / "away"));
}

TEST_F(SharedTemporaryFolder, isNotWaitedForWhereAPipeStandsInPlaceOfTheOutput) {
    const std::string output = outputWhile([&](const fs::path& folder) {
        ASSERT_TRUE(doneByStranger([&] {
            return ::rename(folder.c_str(), (temporary / "away").c_str()) == 0 &&
                   ::mkdir(folder.c_str(), 0777) == 0 && ::mkfifo((folder / "output").c_str(), 0666) == 0;
        }));
    });
    EXPECT_EQ(output, "before\nafter\n");
}

TEST_F(SharedTemporaryFolder, losesNothingThatSomebodyPutInTheFoldersPlace) {
    fs::path planted;
    outputWhile([&](const fs::path& folder) {
        planted = folder;
        fs::rename(folder, temporary / "away");
        fs::copy(theirs, folder);
        giveTreeToStranger(folder);
    });
    EXPECT_EQ(readFile(planted / "output"), "theirs");
}

TEST_F(SharedTemporaryFolder, keepsAnEmptyFolderThatSomebodyPutInTheFoldersPlace) {
    fs::path planted;
    outputWhile([&](const fs::path& folder) {
        planted = folder;
        ASSERT_TRUE(doneByStranger([&] {
            return ::rename(folder.c_str(), (temporary / "away").c_str()) == 0 &&
                   ::mkdir(folder.c_str(), 0777) == 0;
        }));
    });
    EXPECT_TRUE(fs::is_directory(planted));
}

TEST_F(SharedTemporaryFolder, keepsTheOutputFromEverybodyElse) {
    fs::permissions(temporary, fs::perms(01777));
    outputWhile([&](const fs::path& folder) {
        EXPECT_FALSE(doneByStranger([&] {
            return ::open((folder / "output").c_str(), O_RDONLY | O_CLOEXEC) >= 0 ||
                   ::rename(folder.c_str(), (temporary / "away").c_str()) == 0;
        }));
    });
    EXPECT_TRUE(fs::is_empty(temporary));
}

} // namespace marrowbox::test
