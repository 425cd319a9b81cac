// The demonstration as a person runs it, to its end and stopped in the middle.
#include "Platform/Files.h"
#include "Platform/FuseSupport.h"
#include "Support/ScratchFolder.h"

#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace marrowbox::test {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

/// The program in a session of its own, as a terminal starts it: its tools are in its process group.
class DemoProgram {
  public:
    DemoProgram() {
        makeDirectory(temporary_, 0700);
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0)
            throwSystemError("pipe2", folder());
        output_ = Descriptor(ends[0]);
        const Descriptor input(ends[1]);
        const std::string target = folder();
        const std::string setting = "TMPDIR=" + temporary_.string();
        process_ = ::fork();
        if (process_ == 0) {
            ::setsid();
            ::dup2(input.number(), STDOUT_FILENO);
            ::dup2(input.number(), STDERR_FILENO);
            ::putenv(const_cast<char*>(setting.c_str()));
            ::execl(MARROWBOX_DEMO, MARROWBOX_DEMO, target.c_str(), nullptr);
            ::_exit(127);
        }
    }
    DemoProgram(const DemoProgram&) = delete;
    DemoProgram& operator=(const DemoProgram&) = delete;
    ~DemoProgram() {
        if (process_ > 0) {
            ::kill(-process_, SIGKILL);
            ::waitpid(process_, nullptr, 0);
        }
    }

    fs::path folder() const { return fs::canonical(scratch_.path()) / "the demo's, größer"; }

    /// Reads on until these words have been written.
    void awaitWords(std::string_view words) {
        while (written_.find(words) == std::string::npos)
            ASSERT_TRUE(readMore()) << "never wrote “" << words << "”, but\n" << written_;
    }
    /// What Ctrl-C at a terminal does.
    void interrupt() const { ::kill(-process_, SIGINT); }
    void terminate() const { ::kill(process_, SIGTERM); }
    /// Nobody reads what it writes any more.
    void stopReading() { output_.close(); }
    /// Its exit status, 128 and more for a signal.
    int status() {
        while (output_ && readMore()) {
        }
        int status = 0;
        ::waitpid(process_, &status, 0);
        process_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    const std::string& written() const { return written_; }

    /// Fails the test when a mount, a process or a file of the program is left.
    void expectNothingLeft() const {
        const std::string place = fs::canonical(scratch_.path());
        EXPECT_THAT(readFile("/proc/self/mountinfo"),
                    testing::Not(HasSubstr(scratch_.path().filename().string())));
        EXPECT_THAT(directoryNames(temporary_), IsEmpty());
        EXPECT_FALSE(fs::exists(folder()));
        for (const std::string& name : directoryNames("/proc"))
            if (name.find_first_not_of("0123456789") == std::string::npos)
                EXPECT_THAT(commandOf(name), testing::Not(HasSubstr(place)));
    }

  private:
    bool readMore() {
        char bytes[4096];
        const std::size_t count = readSome(output_, bytes);
        written_.append(bytes, count);
        return count > 0;
    }
    /// Empty when the process is gone.
    static std::string commandOf(const std::string& process) {
        try {
            return readFile(fs::path("/proc") / process / "cmdline");
        } catch (const std::system_error&) {
            return {};
        }
    }

    ScratchFolder scratch_;
    fs::path temporary_ = scratch_ / "temporary";
    Descriptor output_;
    pid_t process_ = -1;
    std::string written_;
};

/// Stops the program once it has written these words.
class DemoProgramStopped : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        const bool needsVolumes = std::string_view(GetParam()) == "A read-only volume at";
        if (const auto reason = needsVolumes ? reasonForNoFUSE() : std::nullopt)
            GTEST_SKIP() << *reason;
    }
};

} // namespace

TEST(DemoProgram, signsInBacksUpBringsBackAndComparesEveryByte) {
    DemoProgram demo;
    EXPECT_EQ(demo.status(), 0) << demo.written();
    EXPECT_THAT(demo.written(), HasSubstr("You can return to Marrowbox. This window may be closed."));
    EXPECT_THAT(demo.written(), HasSubstr("Connected ada@example.com, read-only, with leave to send mail."));
    for (const char* line : {"Ada's papers, first snapshot restored", "Ada's papers, last snapshot restored",
                             "Shared drive, first snapshot restored", "Shared drive, last snapshot restored"})
        EXPECT_THAT(demo.written(),
                    testing::ContainsRegex(std::string("\n") + line + "[ 0-9.]*as it was in Google Drive\n"));
}

TEST(DemoProgram, mountsAndEjectsTheLastSnapshot) {
    if (const auto reason = reasonForNoFUSE())
        GTEST_SKIP() << *reason;
    DemoProgram demo;
    EXPECT_EQ(demo.status(), 0) << demo.written();
    EXPECT_THAT(demo.written(),
                HasSubstr("  Letters/2022/Month 1/Letter 1.txt reads: Rewritten letter 0.\n"));
    EXPECT_THAT(demo.written(), HasSubstr("  Ejected.\n"));
    EXPECT_THAT(
        demo.written(),
        testing::ContainsRegex("\nAda's papers, last snapshot mounted[ 0-9.]*as it was in Google Drive\n"));
    EXPECT_THAT(directoryNames(demo.folder() / "Volumes" / "marrowbox"), testing::ElementsAre(".lock"));
    EXPECT_THAT(directoryNames(demo.folder() / "MountedSnapshots" / "MountWork"), IsEmpty());
}

TEST_P(DemoProgramStopped, leavesNoProcessNoMountAndNoFile) {
    DemoProgram demo;
    demo.awaitWords(GetParam());
    demo.interrupt();
    EXPECT_EQ(demo.status(), 130) << demo.written();
    EXPECT_THAT(demo.written(), HasSubstr("Stopped. Nothing was left running, mounted or half done.\n"));
    demo.expectNothingLeft();
}

INSTANTIATE_TEST_SUITE_P(AtEachStage, DemoProgramStopped,
                         testing::Values("Signing in to Google", "The browser shows", "Downloading 33",
                                         "Verifying the backup", "Restoring Ada's papers, first",
                                         "Mounting Ada's papers", "A read-only volume at"));

TEST(DemoProgram, thatIsTerminatedLeavesNothing) {
    DemoProgram demo;
    demo.awaitWords("Downloading 1");
    demo.terminate();
    EXPECT_EQ(demo.status(), 130) << demo.written();
    demo.expectNothingLeft();
}

TEST(DemoProgram, whoseReaderLeavesLeavesNothing) {
    DemoProgram demo;
    demo.awaitWords("Downloading 1");
    demo.stopReading();
    EXPECT_EQ(demo.status(), 130);
    demo.expectNothingLeft();
}

} // namespace marrowbox::test
