#include "Platform/AtomicLeftovers.h"

#include "Support/ScratchFolder.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace marrowbox {

namespace {

using test::ScratchFolder;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

const std::string leftover = ".Settings.json.0123456789abcdef";

void put(const fs::path& path, mode_t mode = 0600) {
    const Descriptor file = openFile(path, O_WRONLY | O_CREAT | O_EXCL, mode);
    writeAll(file, "half a fi");
    ASSERT_EQ(::fchmod(file.number(), mode), 0);
}

/// Removes what is left of settings in a folder, of which these stay.
void expectToStay(const fs::path& folder, const std::vector<std::string>& names) {
    removeAtomicLeftovers(folder / "Settings.json");
    EXPECT_THAT(directoryNames(folder), UnorderedElementsAreArray(names));
}

} // namespace

TEST(AtomicLeftovers, goWhileTheTargetStays) {
    const ScratchFolder scratch;
    put(scratch / "Settings.json");
    put(scratch / leftover);
    put(scratch / ".Settings.json.00000000ffffffff");
    expectToStay(scratch.path(), {"Settings.json"});
}

TEST(AtomicLeftovers, areKnownByTheNameThatAFileHasOnItsWay) {
    const ScratchFolder scratch;
    AtomicFile file(scratch / "Settings.json");
    expectToStay(scratch.path(), {});
}

TEST(AtomicLeftovers, goWhenAUmaskTookBitsFromTheirMode) {
    const ScratchFolder scratch;
    put(scratch / leftover, 0400);
    expectToStay(scratch.path(), {});
}

TEST(AtomicLeftovers, areOfThisTargetAlone) {
    const ScratchFolder scratch;
    const std::vector<std::string> others = {".Other.json.0123456789abcdef",
                                             "Settings.json.0123456789abcdef",
                                             ".Settings.json",
                                             ".Settings.json.",
                                             ".Settings.json.0123456789abcde",
                                             ".Settings.json.0123456789abcdef0",
                                             ".Settings.json.0123456789ABCDEF",
                                             ".Settings.json.0123456789abcdeg",
                                             ".Settings.jsonx0123456789abcdef",
                                             ".Settings.json.swp"};
    for (const std::string& name : others)
        put(scratch / name);
    expectToStay(scratch.path(), others);
}

TEST(AtomicLeftovers, areNoLinksAndLeaveWhatTheyLeadTo) {
    const ScratchFolder scratch;
    put(scratch / "letter");
    fs::create_symlink(scratch / "letter", scratch / leftover);
    fs::create_hard_link(scratch / "letter", scratch / ".Settings.json.1111111111111111");
    expectToStay(scratch.path(), {"letter", leftover, ".Settings.json.1111111111111111"});
    EXPECT_EQ(readFile(scratch / "letter"), "half a fi");
}

TEST(AtomicLeftovers, areNoFoldersAndNoPipes) {
    const ScratchFolder scratch;
    makeDirectory(scratch / leftover, 0700);
    ASSERT_EQ(::mkfifo((scratch / ".Settings.json.2222222222222222").c_str(), 0600), 0);
    expectToStay(scratch.path(), {leftover, ".Settings.json.2222222222222222"});
}

TEST(AtomicLeftovers, areNoFilesThatOthersMayReadOrRun) {
    const ScratchFolder scratch;
    put(scratch / leftover, 0644);
    put(scratch / ".Settings.json.3333333333333333", 0700);
    expectToStay(scratch.path(), {leftover, ".Settings.json.3333333333333333"});
}

TEST(AtomicLeftovers, areNoFilesOfAnotherUser) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the administrator can give a file away";
    const ScratchFolder scratch;
    put(scratch / leftover);
    ASSERT_EQ(::chown((scratch / leftover).c_str(), 1, 1), 0);
    expectToStay(scratch.path(), {leftover});
}

TEST(AtomicLeftovers, areNotLookedForBehindALink) {
    const ScratchFolder scratch;
    makeDirectory(scratch / "folder", 0700);
    put(scratch / "folder" / leftover);
    fs::create_directory_symlink(scratch / "folder", scratch / "link");
    expectToStay(scratch / "link", {leftover});
}

TEST(AtomicLeftovers, areNoneWhereThereIsNoFolder) {
    const ScratchFolder scratch;
    removeAtomicLeftovers(scratch / "missing" / "Settings.json");
    EXPECT_THAT(directoryNames(scratch.path()), IsEmpty());
}

} // namespace marrowbox
