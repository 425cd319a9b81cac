#include "Platform/Files.h"
#include "Support/ScratchFolder.h"

#include <boost/json.hpp>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <spawn.h>
#include <sys/wait.h>

namespace marrowbox::test {
namespace {

/// The program with its standard output on a pipe.
class Program {
  public:
    explicit Program(std::vector<std::string> arguments) {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            throwSystemError("pipe2", {});
        output_ = Descriptor(ends[0]);
        const Descriptor writing(ends[1]);
        arguments.insert(arguments.begin(), MARROWBOX_SANDBOX_PROGRAM);
        std::vector<char*> pointers;
        for (std::string& argument : arguments)
            pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, writing.number(), 1);
        posix_spawn_file_actions_adddup2(&actions, writing.number(), 2);
        const int failure = ::posix_spawn(&child_, pointers[0], &actions, nullptr, pointers.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (failure != 0)
            throw std::system_error(failure, std::generic_category(), "posix_spawn");
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        if (child_ != 0) {
            signal(SIGKILL);
            wait();
        }
    }

    std::string firstOutput() const {
        std::array<char, 4096> bytes{};
        const std::size_t count = readSome(output_, bytes);
        return {bytes.data(), count};
    }
    void signal(int number) const { ::kill(child_, number); }
    int wait() {
        int status = 0;
        ::waitpid(std::exchange(child_, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

  private:
    Descriptor output_;
    pid_t child_ = 0;
};

TEST(SandboxProgram, tellsItsAddressWhenItsFilesAreThereAndEndsWhenToldTo) {
    const ScratchFolder folder;
    Program program({"--authority", folder / "ca.pem", "--client", folder / "client.json", "--token",
                     folder / "token.json", "--ready", folder / "ready"});
    const std::string address = program.firstOutput();
    EXPECT_THAT(address, testing::StartsWith("http://127.0.0.1:"));
    EXPECT_EQ(readFile(folder / "ready") + "\n", address);
    EXPECT_THAT(readFile(folder / "ca.pem"), testing::StartsWith("-----BEGIN CERTIFICATE-----"));
    EXPECT_TRUE(boost::json::parse(readFile(folder / "client.json"))
                    .at("installed")
                    .as_object()
                    .contains("client_id"));
    EXPECT_TRUE(boost::json::parse(readFile(folder / "token.json")).as_object().contains("refresh_token"));
    program.signal(SIGUSR1);
    program.signal(SIGTERM);
    EXPECT_EQ(program.wait(), 0);
}

TEST(SandboxProgram, explainsItselfWhenItIsMisused) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--help"}, {"--port"}, {"--port", "x"}, {"--generated", "1"}}) {
        Program program(arguments);
        EXPECT_THAT(program.firstOutput(), testing::StartsWith("marrowbox-sandbox: "));
        EXPECT_EQ(program.wait(), 2);
    }
}

} // namespace
} // namespace marrowbox::test
