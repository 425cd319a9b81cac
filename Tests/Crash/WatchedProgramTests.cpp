#include "Support/WatchedProgram.h"

#include "Platform/Files.h"
#include "Support/ScratchFolder.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace marrowbox::test {

namespace {

/// Programs of the system, watched in a folder with the file "old" of ten letters.
class Watching : public testing::Test {
  protected:
    void SetUp() override {
        std::ofstream(folder / "old") << "abcdefghij";
        if (const auto reason = reasonForNoWatching())
            GTEST_SKIP() << *reason;
    }

    /// Runs a command of the shell; calls outside the folder take place.
    int run(const std::string& command, const std::function<Answer(const FileCall&)>& decide) {
        WatchedProgram program({"/bin/sh", "-c", "cd " + folder.path().string() + " && exec " + command});
        return program.run([&](const FileCall& call) {
            return call.isWithin(folder.path()) ? decide(call) : Answer::proceed();
        });
    }

    ScratchFolder folder;
};

} // namespace

TEST_F(Watching, asksBeforeEachCallThatChangesAFile) {
    std::vector<std::string> seen;
    const int status = run("dd if=old of=new conv=fsync status=none", [&](const FileCall& call) {
        seen.push_back(std::string(call.name) + " " + call.path.filename().string());
        return Answer::proceed();
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(seen, (std::vector<std::string>{"openat new", "write new", "fsync new"}));
    EXPECT_EQ(readFile(folder / "new"), "abcdefghij");
}

TEST_F(Watching, namesBothEndsOfAMove) {
    FileCall seen;
    run("mv old new", [&](const FileCall& call) {
        seen = call;
        return Answer::proceed();
    });
    EXPECT_TRUE(seen.name.starts_with("rename"));
    EXPECT_EQ(seen.path, folder / "old");
    EXPECT_EQ(seen.target, folder / "new");
}

TEST_F(Watching, killsBeforeTheCallTakesPlace) {
    const int status = run("mv old new", [](const FileCall&) { return Answer::kill(); });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    EXPECT_TRUE(fs::exists(folder / "old"));
    EXPECT_FALSE(fs::exists(folder / "new"));
}

TEST_F(Watching, failsACallWithAnError) {
    WatchedProgram program({"/bin/mkdir", folder / "below"});
    const int status = program.run([](const FileCall& call) {
        return call.name.starts_with("mkdir") ? Answer::fail(ENOSPC) : Answer::proceed();
    });
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_NE(program.words().find("No space left on device"), std::string::npos);
    EXPECT_FALSE(fs::exists(folder / "below"));
}

TEST_F(Watching, cutsAWriteShort) {
    int writes = 0;
    const int status = run("dd if=old of=new status=none iflag=fullblock oflag=append conv=notrunc",
                           [&](const FileCall& call) {
                               if (call.name != "write")
                                   return Answer::proceed();
                               return ++writes == 1 ? Answer::writeHalf() : Answer::proceed();
                           });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(writes, 2) << "the program goes on with the rest";
    EXPECT_EQ(readFile(folder / "new"), "abcdefghij");
}

} // namespace marrowbox::test
