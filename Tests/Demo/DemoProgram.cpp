#include "DemoProgram.h"

#include "Platform/Files.h"

#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace marrowbox::test {

namespace {

using testing::HasSubstr;
using testing::Not;

/// Empty when the process is gone.
std::string commandOf(const std::string& process) {
    try {
        return readFile(fs::path("/proc") / process / "cmdline");
    } catch (const std::system_error&) {
        return {};
    }
}

/// Shows the data folder that it was given.
std::string environmentOf(const std::string& process) {
    try {
        return readFile(fs::path("/proc") / process / "environ");
    } catch (const std::system_error&) {
        return {};
    }
}

} // namespace

DemoProgram::DemoProgram(std::map<std::string, std::string> variables) {
    makeDirectory(temporary_, 0700);
    variables.emplace("TMPDIR", temporary_);
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throwSystemError("pipe2", folder());
    output_ = Descriptor(ends[0]);
    const Descriptor input(ends[1]);
    process_ = ::fork();
    if (process_ != 0)
        return;
    ::setsid();
    ::dup2(input.number(), STDOUT_FILENO);
    ::dup2(input.number(), STDERR_FILENO);
    become(variables);
}

DemoProgram::~DemoProgram() {
    if (process_ > 0) {
        ::kill(-process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
}

void DemoProgram::become(const std::map<std::string, std::string>& variables) const {
    ::unsetenv("DISPLAY");
    ::unsetenv("WAYLAND_DISPLAY");
    for (const auto& [name, value] : variables)
        ::setenv(name.c_str(), value.c_str(), 1);
    ::execl(MARROWBOX_DEMO, MARROWBOX_DEMO, folder().c_str(), nullptr);
    ::_exit(127);
}

void DemoProgram::awaitWords(std::string_view words) {
    while (written_.find(words) == std::string::npos)
        ASSERT_TRUE(readMore()) << "never wrote “" << words << "”, but\n" << written_;
}

void DemoProgram::interrupt() const {
    ::kill(-process_, SIGINT);
}

void DemoProgram::terminate() const {
    ::kill(process_, SIGTERM);
}

int DemoProgram::status() {
    while (output_ && readMore()) {
    }
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void DemoProgram::expectNothingRunning() const {
    const std::string place = fs::canonical(scratch_.path());
    EXPECT_THAT(readFile("/proc/self/mountinfo"), Not(HasSubstr(scratch_.path().filename().string())));
    EXPECT_THAT(directoryNames(temporary_), testing::IsEmpty());
    for (const std::string& name : directoryNames("/proc"))
        if (name.find_first_not_of("0123456789") == std::string::npos) {
            EXPECT_THAT(commandOf(name), Not(HasSubstr(place)));
            EXPECT_THAT(environmentOf(name), Not(HasSubstr(place)));
        }
}

void DemoProgram::expectNothingLeft() const {
    expectNothingRunning();
    EXPECT_FALSE(fs::exists(folder()));
}

bool DemoProgram::readMore() {
    char bytes[4096];
    const std::size_t count = readSome(output_, bytes);
    written_.append(bytes, count);
    return count > 0;
}

} // namespace marrowbox::test
