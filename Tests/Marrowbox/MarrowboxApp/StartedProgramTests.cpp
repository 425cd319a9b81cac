// The program itself, as it begins in strange surroundings. It is looked at, and killed, before it changes
// its first file.
#include "Platform/Files.h"
#include "Support/ScratchFolder.h"
#include "Support/WatchedProgram.h"

#include <array>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace marrowbox::test {

namespace {

using testing::Each;

/// What the system tells of a process.
struct SeenProgram {
    std::array<fs::path, 3> streams; ///< Where they lead; empty for a missing one.
    std::string limits;
    std::string status;

    bool ignores(int signal) const {
        constexpr std::string_view name = "\nSigIgn:\t";
        const std::string mask = status.substr(status.find(name) + name.size(), 16);
        return (std::stoull(mask, nullptr, 16) >> (signal - 1) & 1) != 0;
    }
};

SeenProgram seen(pid_t process) {
    const fs::path place = "/proc/" + std::to_string(process);
    SeenProgram program{
        .streams = {}, .limits = readFile(place / "limits"), .status = readFile(place / "status")};
    std::error_code missing;
    for (std::size_t stream = 0; stream < program.streams.size(); ++stream)
        program.streams[stream] = fs::read_symlink(place / "fd" / std::to_string(stream), missing);
    return program;
}

class StartedProgram : public testing::Test {
  protected:
    void SetUp() override {
        if (const auto reason = reasonForNoWatching())
            GTEST_SKIP() << *reason;
        makeDirectory(home / "run", 0700);
        makeDirectory(data, 0700);
    }

    /// Starts the program in a shell that has done this before, and kills it before its first call on a file
    /// of its data whose name is that one's, or that begins so. Gives its status, as wait(2) does.
    int start(const std::string& preparation, const std::string& last, const std::string& call) {
        WatchedProgram program(
            {"/usr/bin/env", "HOME=" + home.path().string(), "XDG_RUNTIME_DIR=" + (home / "run").string(),
             "XDG_CACHE_HOME=" + (home / "cache").string(), "MARROW_DATA_DIR=" + data.string(),
             "QT_QPA_PLATFORM=offscreen", "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent",
             "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent", "/bin/sh", "-c", preparation + "\nexec \"$0\"",
             MARROWBOX_PROGRAM});
        return program.run([&](const FileCall& asked) {
            if (asked.path.parent_path() != data || asked.name != call ||
                !asked.path.filename().string().starts_with(last))
                return Answer::proceed();
            found = seen(program.process());
            return Answer::kill();
        });
    }

    const ScratchFolder home;
    const fs::path data = home / "data";
    SeenProgram found;
};

} // namespace

TEST_F(StartedProgram, givesTheNumberOfAStandardStreamThatIsMissingToNoFile) {
    EXPECT_EQ(start("exec <&- >&- 2>&-", ".application.lock", "openat"), SIGKILL);
    EXPECT_THAT(found.streams, Each(fs::path("/dev/null")));
}

TEST_F(StartedProgram, leavesNoImageOfItsMemory) {
    EXPECT_EQ(start("", ".application.lock", "openat"), SIGKILL);
    EXPECT_THAT(found.limits, testing::ContainsRegex("Max core file size +1 +1 "));
}

TEST_F(StartedProgram, outlivesAReaderThatGoesAway) {
    EXPECT_EQ(start("trap '' CHLD", ".application.lock", "openat"), SIGKILL);
    EXPECT_TRUE(found.ignores(SIGPIPE));
    EXPECT_FALSE(found.ignores(SIGCHLD));
}

TEST_F(StartedProgram, outlivesAFileThatMayNotGrow) {
    // It tries to save its settings, fails, and takes the unfinished file away.
    EXPECT_EQ(start("ulimit -f 0", ".Configuration.json.", "unlink"), SIGKILL);
}

} // namespace marrowbox::test
