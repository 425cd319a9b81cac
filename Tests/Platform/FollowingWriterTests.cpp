#include "Platform/FollowingWriter.h"

#include "Platform/Files.h"
#include "Support/ScratchFolder.h"

#include <cstring>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <pthread.h>
#include <set>
#include <string>
#include <system_error>
#include <thread>

namespace marrowbox {

namespace {

constexpr std::size_t bufferSize = 4096;

std::unique_ptr<char[]> filled(const std::string& text) {
    auto buffer = std::make_unique<char[]>(bufferSize);
    std::memcpy(buffer.get(), text.data(), text.size());
    return buffer;
}

/// Hands over this many buffers of as many bytes each, unless an earlier one has failed.
void write(FollowingWriter& writer, int count, const std::string& text) {
    auto buffer = filled(text);
    for (int index = 0; index < count; ++index) {
        std::memcpy(buffer.get(), text.data(), text.size());
        buffer = writer.exchange(std::move(buffer), text.size());
    }
}

/// While it lives no thread can be had: each would want a stack larger than the address space.
class NoThreads {
  public:
    NoThreads() {
        pthread_getattr_default_np(&before_);
        pthread_attr_t greedy;
        pthread_attr_init(&greedy);
        pthread_attr_setstacksize(&greedy, std::size_t{1} << 48);
        pthread_setattr_default_np(&greedy);
        pthread_attr_destroy(&greedy);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&before_);
        pthread_attr_destroy(&before_);
    }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

  private:
    pthread_attr_t before_;
};

} // namespace

TEST(FollowingWriter, putsEverythingIntoTheFileInItsOrder) {
    const test::ScratchFolder folder;
    const Descriptor file = openFile(folder / "file", O_WRONLY | O_CREAT, 0600);
    std::string expected;
    FollowingWriter writer(file, bufferSize);
    for (int index = 0; index < 1000; ++index) {
        const std::string text = std::to_string(index) + std::string(static_cast<std::size_t>(index), '.');
        expected += text;
        writer.exchange(filled(text), text.size());
    }
    writer.finish();
    EXPECT_EQ(readFile(folder / "file"), expected);
}

TEST(FollowingWriter, handsBuffersRoundAndNeedsNoMoreThanThree) {
    const test::ScratchFolder folder;
    const Descriptor file = openFile(folder / "file", O_WRONLY | O_CREAT, 0600);
    FollowingWriter writer(file, bufferSize);
    std::set<const char*> seen;
    auto buffer = filled("a");
    for (int index = 0; index < 100; ++index) {
        seen.insert(buffer.get());
        buffer = writer.exchange(std::move(buffer), 1);
    }
    writer.finish();
    EXPECT_EQ(readFile(folder / "file").size(), 100U);
    EXPECT_LE(seen.size(), 3U);
}

TEST(FollowingWriter, saysWhatWentWrongAtTheLatestWhenItFinishes) {
    const Descriptor full = openFile("/dev/full", O_WRONLY);
    FollowingWriter writer(full, bufferSize);
    writer.exchange(filled("text"), 4);
    try {
        writer.finish();
        FAIL() << "a full disk took everything";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_space_on_device);
    }
}

TEST(FollowingWriter, takesNothingMoreOnceItHasFailed) {
    const Descriptor full = openFile("/dev/full", O_WRONLY);
    FollowingWriter writer(full, bufferSize);
    EXPECT_THROW(write(writer, 1000, "text"), std::system_error);
}

TEST(FollowingWriter, endsInTheMiddleWhenItIsNotFinished) {
    const test::ScratchFolder folder;
    const Descriptor file = openFile(folder / "file", O_WRONLY | O_CREAT, 0600);
    {
        FollowingWriter writer(file, bufferSize);
        write(writer, 100, "ab");
    }
    const std::string written = readFile(folder / "file");
    EXPECT_GE(written.size(), 2U * 98);
    EXPECT_LE(written.size(), 2U * 100);
}

TEST(FollowingWriter, writesByItselfWhenNoThreadCanBeHad) {
    const test::ScratchFolder folder;
    const Descriptor file = openFile(folder / "file", O_WRONLY | O_CREAT, 0600);
    const NoThreads none;
    EXPECT_THROW(std::thread([] {}).join(), std::system_error);
    FollowingWriter writer(file, bufferSize);
    auto buffer = writer.exchange(filled("one "), 4);
    EXPECT_EQ(readFile(folder / "file"), "one ");
    std::memcpy(buffer.get(), "two", 3);
    EXPECT_NE(writer.exchange(std::move(buffer), 3), nullptr);
    writer.finish();
    EXPECT_EQ(readFile(folder / "file"), "one two");
}

TEST(FollowingWriter, saysAtOnceWhatWentWrongWithoutAThread) {
    const Descriptor full = openFile("/dev/full", O_WRONLY);
    const NoThreads none;
    FollowingWriter writer(full, bufferSize);
    EXPECT_THROW(writer.exchange(filled("text"), 4), std::system_error);
}

} // namespace marrowbox
