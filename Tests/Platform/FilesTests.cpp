#include "Platform/Files.h"

#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <system_error>
#include <thread>

namespace marrowbox {

namespace {

using test::ScratchFolder;
using test::thrown;

/// The process's umask for the length of a test.
class Umask {
  public:
    explicit Umask(mode_t mask) : before_(::umask(mask)) {}
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;
    ~Umask() { ::umask(before_); }

  private:
    mode_t before_;
};

void put(const fs::path& path, std::string_view bytes) {
    writeAll(openFile(path, O_WRONLY | O_CREAT | O_TRUNC), bytes);
}

mode_t modeOf(const fs::path& path) {
    return linkStatus(path).value().st_mode & 07777;
}

std::string words(const char* call, const fs::path& path, int code) {
    return std::string(call) + " " + path.string() + ": " + std::generic_category().message(code);
}

std::vector<std::string> sortedNames(const fs::path& folder) {
    auto names = directoryNames(folder);
    std::ranges::sort(names);
    return names;
}

using Names = std::vector<std::string>;

} // namespace

TEST(Files, failWithTheSystemsWordsAndThePath) {
    const ScratchFolder scratch;
    const auto missing = scratch / "missing";
    EXPECT_EQ(thrown<std::system_error>([&] { openFile(missing, O_RDONLY); }),
              words("open", missing, ENOENT));
    EXPECT_EQ(thrown<std::system_error>([&] { isDirectory(missing); }), words("stat", missing, ENOENT));
    EXPECT_EQ(thrown<std::system_error>([&] { synchronizeFile(missing); }), words("open", missing, ENOENT));
    EXPECT_EQ(thrown<std::system_error>([&] { makeDirectory(missing / "x", 0700); }),
              words("mkdir", missing / "x", ENOENT));
    EXPECT_THROW(readFile(missing), std::system_error);
    EXPECT_THROW(directoryNames(missing), std::system_error);
    EXPECT_THROW(readAll(openFile(scratch.path(), O_RDONLY)), std::system_error);
}

TEST(Files, areOpenedForThisProgramAlone) {
    const ScratchFolder scratch;
    const Descriptor file = openFile(scratch / "file", O_WRONLY | O_CREAT);
    EXPECT_TRUE(::fcntl(file.number(), F_GETFD) & FD_CLOEXEC);
    EXPECT_EQ(modeOf(scratch / "file"), 0600U);
}

TEST(Files, areReadWholeWhateverTheirSize) {
    const ScratchFolder scratch;
    constexpr std::size_t chunk = 1 << 20;
    for (const std::size_t size :
         std::initializer_list<std::size_t>{0, 1, 4095, 4096, 4097, chunk - 1, chunk, chunk + 1, 3'500'000}) {
        std::string bytes(size, '\0');
        for (std::size_t index = 0; index < size; ++index)
            bytes[index] = static_cast<char>(index * 31 >> 3);
        put(scratch / "file", bytes);
        ASSERT_TRUE(readFile(scratch / "file") == bytes) << size;
    }
}

TEST(Files, areReadWholeWhenTheirSizeIsNotKnown) {
    EXPECT_FALSE(readFile("/proc/self/status").empty());
    EXPECT_EQ(regularFileSize("/proc/self/status"), 0);
}

TEST(Files, areReadFromWhereTheDescriptorStands) {
    const ScratchFolder scratch;
    put(scratch / "file", "0123456789");
    const Descriptor file = openFile(scratch / "file", O_RDONLY);
    std::array<char, 4> start{};
    EXPECT_EQ(readSome(file, start), 4U);
    EXPECT_EQ(readAll(file), "456789");
    EXPECT_EQ(readSome(file, start), 0U);
}

TEST(Files, areWrittenOnAfterShortWrites) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const std::string bytes(1'000'000, 'x'); // far more than a pipe holds
    std::string received;
    std::jthread reader([&] { received = readAll(reading); });
    writeAll(writing, bytes);
    writing.close();
    reader.join();
    EXPECT_TRUE(received == bytes);
}

TEST(Files, tellWhatStandsAtAPath) {
    const ScratchFolder scratch;
    put(scratch / "file", "12345");
    fs::create_symlink(scratch / "file", scratch / "link");
    fs::create_symlink(scratch.path(), scratch / "folder link");
    EXPECT_EQ(regularFileSize(scratch / "file"), 5);
    EXPECT_EQ(regularFileSize(scratch / "link"), std::nullopt);
    EXPECT_EQ(regularFileSize(scratch.path()), std::nullopt);
    EXPECT_EQ(regularFileSize(scratch / "missing"), std::nullopt);
    EXPECT_TRUE(isSymbolicLink(scratch / "link"));
    EXPECT_FALSE(isSymbolicLink(scratch / "file"));
    EXPECT_FALSE(isSymbolicLink(scratch / "missing"));
    EXPECT_TRUE(isDirectory(scratch / "folder link"));
    EXPECT_FALSE(isDirectory(scratch / "file"));
    EXPECT_FALSE(linkStatus(scratch / "missing"));
}

TEST(Files, areSynchronizedWithoutAChange) {
    const ScratchFolder scratch;
    put(scratch / "file", "kept");
    synchronizeFile(scratch / "file");
    EXPECT_EQ(readFile(scratch / "file"), "kept");
}

TEST(Folders, haveExactlyTheirModeWhateverTheUmask) {
    const ScratchFolder scratch;
    const Umask mask(0077);
    makeDirectory(scratch / "open", 0755);
    makeDirectory(scratch / "private", 0700);
    EXPECT_EQ(modeOf(scratch / "open"), 0755U);
    EXPECT_EQ(modeOf(scratch / "private"), 0700U);
}

TEST(Folders, areNotMadeWhereSomethingStands) {
    const ScratchFolder scratch;
    makeDirectory(scratch / "folder", 0755);
    EXPECT_EQ(thrown<std::system_error>([&] { makeDirectory(scratch / "folder", 0700); }),
              words("mkdir", scratch / "folder", EEXIST));
    EXPECT_EQ(modeOf(scratch / "folder"), 0755U);
}

TEST(Folders, areMadeWithTheirParents) {
    const ScratchFolder scratch;
    const Umask mask(0022);
    makeDirectories(scratch / "a/b/c");
    makeDirectories(scratch / "a/b/c");
    makeDirectories(scratch / "a/private/deep", 0700);
    EXPECT_EQ(modeOf(scratch / "a"), 0755U);
    EXPECT_EQ(modeOf(scratch / "a/b/c"), 0755U);
    EXPECT_EQ(modeOf(scratch / "a/private"), 0700U);
    EXPECT_EQ(modeOf(scratch / "a/private/deep"), 0700U);
}

TEST(Folders, haveExactlyTheirModeWithTheirParentsToo) {
    const ScratchFolder scratch;
    const Umask mask(0277);
    makeDirectories(scratch / "private/deep", 0700);
    EXPECT_EQ(modeOf(scratch / "private"), 0700U);
    EXPECT_EQ(modeOf(scratch / "private/deep"), 0700U);
}

TEST(Folders, areMadeDeeperThanAPathIsLong) {
    const ScratchFolder scratch;
    const Umask mask(0277);
    fs::path deep = scratch.path();
    for (int level = 0; level < 50; ++level)
        deep /= std::string(200, 'd');
    makeDirectories(deep, 0700);
    makeDirectories(deep, 0700);
    std::size_t levels = 0;
    for (const auto& found : fs::recursive_directory_iterator(scratch.path())) {
        EXPECT_EQ(found.status().permissions(), fs::perms::owner_all);
        if (++levels == 10) // as far as a path reaches
            break;
    }
    makeDirectories(deep / "below");
    levels = 0;
    for ([[maybe_unused]] const auto& found : fs::recursive_directory_iterator(scratch.path()))
        ++levels;
    EXPECT_EQ(levels, 51U);

    put(scratch / "file", "kept");
    EXPECT_THROW(makeDirectories(scratch.path() / "file" / deep.relative_path()), std::system_error);
}

TEST(Folders, areMadeThroughALinkToAFolder) {
    const ScratchFolder scratch;
    makeDirectory(scratch / "real", 0700);
    fs::create_symlink(scratch / "real", scratch / "link");
    makeDirectories(scratch / "link");
    makeDirectories(scratch / "link/inside");
    EXPECT_TRUE(isDirectory(scratch / "real/inside"));
}

TEST(Folders, areNotMadeInPlaceOfOrBelowAFile) {
    const ScratchFolder scratch;
    put(scratch / "file", "kept");
    EXPECT_EQ(thrown<std::system_error>([&] { makeDirectories(scratch / "file"); }),
              words("mkdir", scratch / "file", EEXIST));
    EXPECT_EQ(thrown<std::system_error>([&] { makeDirectories(scratch / "file/x/y"); }),
              words("mkdir", scratch / "file/x/y", ENOTDIR));
    EXPECT_EQ(readFile(scratch / "file"), "kept");
}

TEST(Folders, listTheirHiddenNamesToo) {
    const ScratchFolder scratch;
    EXPECT_EQ(sortedNames(scratch.path()), Names{});
    put(scratch / ".hidden", "");
    put(scratch / "name", "");
    fs::create_symlink("nowhere", scratch / "dangling");
    EXPECT_EQ(sortedNames(scratch.path()), (Names{".hidden", "dangling", "name"}));
}

TEST(Folders, areRemovedWithoutFollowingLinks) {
    const ScratchFolder scratch;
    makeDirectories(scratch / "kept");
    put(scratch / "kept/file", "kept");
    makeDirectories(scratch / "tree/deep");
    put(scratch / "tree/deep/file", "");
    fs::create_directory_symlink(scratch / "kept", scratch / "tree/link");
    removeTree(scratch / "tree");
    EXPECT_EQ(sortedNames(scratch.path()), Names{"kept"});
    EXPECT_EQ(readFile(scratch / "kept/file"), "kept");
    fs::create_directory_symlink(scratch / "kept", scratch / "link");
    removeTree(scratch / "link");
    EXPECT_EQ(readFile(scratch / "kept/file"), "kept");
}

TEST(AtomicFile, takesTheTargetsPlaceInOneStep) {
    const ScratchFolder scratch;
    put(scratch / "target", "old");
    ::chmod((scratch / "target").c_str(), 0644);
    AtomicFile file(scratch / "target");
    writeAll(file.descriptor(), "new");
    EXPECT_EQ(readFile(scratch / "target"), "old") << "until it is published";
    file.publish();
    EXPECT_EQ(readFile(scratch / "target"), "new");
    EXPECT_EQ(modeOf(scratch / "target"), 0600U);
    EXPECT_EQ(sortedNames(scratch.path()), Names{"target"});
}

TEST(AtomicFile, isPrivateWhateverTheUmask) {
    const ScratchFolder scratch;
    const Umask mask(0277);
    AtomicFile file(scratch / "target");
    file.publish();
    EXPECT_EQ(modeOf(scratch / "target"), 0600U);
}

TEST(AtomicFile, waitsBesideTheTargetUnderAHiddenName) {
    const ScratchFolder scratch;
    const AtomicFile file(scratch / "target");
    const auto names = directoryNames(scratch.path());
    ASSERT_EQ(names.size(), 1U);
    EXPECT_TRUE(names[0].starts_with(".target.")) << names[0];
    EXPECT_EQ(modeOf(scratch / names[0]), 0600U);
}

TEST(AtomicFile, vanishesWhenItIsNotPublished) {
    const ScratchFolder scratch;
    put(scratch / "target", "old");
    {
        const AtomicFile file(scratch / "target");
        writeAll(file.descriptor(), "new");
    }
    EXPECT_EQ(readFile(scratch / "target"), "old");
    EXPECT_EQ(sortedNames(scratch.path()), Names{"target"});
}

TEST(AtomicFile, vanishesWhenItCannotTakeTheTargetsPlace) {
    const ScratchFolder scratch;
    makeDirectories(scratch / "target");
    EXPECT_EQ(thrown<std::system_error>([&] { AtomicFile(scratch / "target").publish(); }),
              words("rename", scratch / "target", EISDIR));
    EXPECT_EQ(sortedNames(scratch.path()), Names{"target"});
}

TEST(AtomicFile, replacesALinkAndLeavesWhatItPointedTo) {
    const ScratchFolder scratch;
    put(scratch / "elsewhere", "kept");
    fs::create_symlink(scratch / "elsewhere", scratch / "target");
    AtomicFile file(scratch / "target");
    writeAll(file.descriptor(), "new");
    file.publish();
    EXPECT_FALSE(isSymbolicLink(scratch / "target"));
    EXPECT_EQ(readFile(scratch / "elsewhere"), "kept");
}

TEST(AtomicFile, isOneFileAlsoWhenItIsMoved) {
    const ScratchFolder scratch;
    {
        AtomicFile first(scratch / "target");
        AtomicFile second(std::move(first));
        writeAll(second.descriptor(), "moved");
        second.publish();
    }
    EXPECT_EQ(readFile(scratch / "target"), "moved");
    EXPECT_EQ(sortedNames(scratch.path()), Names{"target"});
}

TEST(AtomicFile, failsWhereItsFolderIsMissing) {
    const ScratchFolder scratch;
    EXPECT_THROW(AtomicFile(scratch / "missing/target"), std::system_error);
}

} // namespace marrowbox
