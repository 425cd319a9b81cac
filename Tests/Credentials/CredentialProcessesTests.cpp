#include "CredentialFolder.h"

#include "Repository/LockBusyError.h"

#include <array>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>

namespace marrowbox {

namespace {

/// A pipe, to wait for what another process does.
struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::system_error(errno, std::generic_category(), "pipe");
        reading = Descriptor(ends[0]);
        writing = Descriptor(ends[1]);
    }
    Descriptor reading;
    Descriptor writing;
};

/// The status with which a second process ends that does this work.
template <typename Work>
pid_t startProcess(Work work) {
    const pid_t child = ::fork();
    if (child != 0)
        return child;
    int status = 1;
    try {
        status = work();
    } catch (...) {
    }
    ::_exit(status);
}

int statusOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return status;
}

} // namespace

TEST(CredentialProcesses, areRefusedWhileAnotherIsInsideTheStore) {
    test::CredentialFolder folder;
    folder.save("old", "key");
    Pipe entered;
    Pipe leave;
    const pid_t other = startProcess([&] {
        leave.writing.close();
        return folder.store().access([&](const auto&) {
            writeAll(entered.writing, "x");
            return readAll(leave.reading).empty() ? 0 : 1;
        });
    });
    ASSERT_GT(other, 0);
    std::array<char, 1> signal{};
    EXPECT_EQ(readSome(entered.reading, signal), 1U);
    EXPECT_EQ(test::thrown<LockBusyError>([&] { folder.read("key"); }),
              "This backup is already in use. Wait for the other job to finish.");
    EXPECT_EQ(test::thrown<LockBusyError>([&] { folder.save("new", "key"); }),
              "This backup is already in use. Wait for the other job to finish.");
    leave.writing.close();
    EXPECT_EQ(statusOf(other), 0);
    EXPECT_EQ(folder.read("key"), "old");
}

TEST(CredentialProcesses, leaveTheOldFileWhenTheyDieBeforeTheRename) {
    test::CredentialFolder folder;
    folder.save("old", "key");
    const auto die = []() -> int { return ::raise(SIGKILL); };
    std::vector<CredentialFileCalls> moments(3);
    moments[0].write = [&](auto, auto, auto) { return die(); };
    moments[1].fsync = [&](auto) { return die(); };
    moments[2].rename = [&](auto, auto) { return die(); };
    for (const CredentialFileCalls& calls : moments) {
        const int status = statusOf(startProcess([&] {
            folder.save("new", "key", calls);
            return 0;
        }));
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
        EXPECT_EQ(folder.read("key"), "old");
    }
    EXPECT_EQ(folder.temporaries().size(), 3U);
    folder.save("new", "key");
    EXPECT_EQ(folder.read("key"), "new");
    EXPECT_EQ(folder.temporaries().size(), 3U) << "what a dead process left is ignored and stays";
}

TEST(CredentialProcesses, letTheThreadsOfOneProcessWaitForEachOther) {
    test::CredentialFolder folder;
    constexpr int count = 20;
    const auto saveMany = [&](const std::string& name) {
        for (int index = 0; index < count; ++index)
            folder.save(name, name + "." + std::to_string(index));
    };
    {
        std::jthread first([&] { saveMany("first"); });
        std::jthread second([&] { saveMany("second"); });
    }
    for (int index = 0; index < count; ++index) {
        EXPECT_EQ(folder.read("first." + std::to_string(index)), "first");
        EXPECT_EQ(folder.read("second." + std::to_string(index)), "second");
    }
}

TEST(CredentialProcesses, areLetInAgainAfterAFailureInside) {
    test::CredentialFolder folder;
    EXPECT_THROW(folder.store().access([](const auto&) -> int { throw std::runtime_error("inside"); }),
                 std::runtime_error);
    EXPECT_EQ(folder.read("key"), std::nullopt);
}

} // namespace marrowbox
