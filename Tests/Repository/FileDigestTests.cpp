#include "Repository/FileDigest.h"

#include "Platform/Cancellation.h"
#include "Platform/Digest.h"
#include "Repository/BackupRepository.h"
#include "Repository/SideBySide.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"
#include "TestRepository.h"

#include <atomic>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace test;

std::string bytesOfLength(std::size_t length) {
    std::string bytes(length, '\0');
    for (std::size_t index = 0; index < length; ++index)
        bytes[index] = static_cast<char>(index * 131 + index / 4096);
    return bytes;
}

FileDigest inOnePiece(std::string_view bytes) {
    Digest md5 = Digest::md5();
    md5.update(bytes);
    return {ObjectHash::ofDigest(sha256(bytes)), hexadecimal(md5.finish()),
            static_cast<std::int64_t>(bytes.size())};
}

/// Gives chunks of four bytes: "0000", "1111" and so on, and an end after the last.
ChunkSource numberedChunks(int count, int& read) {
    return [count, &read](std::span<char> into) -> std::size_t {
        if (read == count)
            return 0;
        std::ranges::fill(into, static_cast<char>('0' + read++));
        return into.size();
    };
}

} // namespace

TEST(FileDigest, knowsTheDigestsOfTheEmptyFileAndOfAbc) {
    const ScratchFolder folder;
    writeFile(folder / "empty", "");
    const FileDigest empty = BackupRepository::digest(folder / "empty", {});
    EXPECT_EQ(empty.sha256.text(), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(empty.md5, "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(empty.size, 0);
    writeFile(folder / "abc", "abc");
    const FileDigest abc = BackupRepository::digest(folder / "abc", {});
    EXPECT_EQ(abc.sha256.text(), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(abc.md5, "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(abc.size, 3);
}

TEST(FileDigest, isTheSameInChunksAsInOnePiece) {
    const ScratchFolder folder;
    constexpr std::size_t mebi = 1 << 20;
    for (const std::size_t length : {mebi - 1, mebi, mebi + 1, 4 * mebi - 1, 4 * mebi, 9 * mebi + 7}) {
        const std::string bytes = bytesOfLength(length);
        writeFile(folder / "file", bytes);
        EXPECT_EQ(BackupRepository::digest(folder / "file", {}), inOnePiece(bytes)) << length;
        const FileDigest one = digestFile(folder / "file", DigestChoice::sha256, {});
        EXPECT_EQ(one.sha256, inOnePiece(bytes).sha256) << length;
        EXPECT_EQ(one.size, static_cast<std::int64_t>(length));
        EXPECT_EQ(one.md5, "");
    }
}

TEST(FileDigest, stopsWithTheFirstChunkOnceCancelled) {
    const ScratchFolder folder;
    std::stop_source stop;
    stop.request_stop();
    for (const std::size_t length : {std::size_t(1), std::size_t(5) << 20}) {
        writeFile(folder / "file", bytesOfLength(length));
        EXPECT_THROW(BackupRepository::digest(folder / "file", stop.get_token()), CancellationError)
            << length;
    }
}

TEST(FileDigest, readsAnEmptyFileToItsEndEvenWhenCancelled) {
    const ScratchFolder folder;
    std::stop_source stop;
    stop.request_stop();
    writeFile(folder / "empty", "");
    EXPECT_EQ(BackupRepository::digest(folder / "empty", stop.get_token()).size, 0);
}

TEST(FileDigest, passesOnTheSystemsWords) {
    const ScratchFolder folder;
    EXPECT_THROW(BackupRepository::digest(folder / "gone", {}), std::system_error);
    EXPECT_THROW(BackupRepository::digest(folder.path(), {}), std::system_error) << "a folder";
}

TEST(ReadForTwo, handsEveryChunkToBothInOrder) {
    int read = 0;
    std::string first;
    std::string second;
    readForTwo(
        numberedChunks(9, read), 4, [&](std::string_view chunk) { first += chunk; },
        [&](std::string_view chunk) { second += chunk; });
    EXPECT_EQ(first, "000011112222333344445555666677778888");
    EXPECT_EQ(second, first);
}

TEST(ReadForTwo, endsAtOnceWhenThereIsNothing) {
    int read = 0;
    const auto refuse = [](std::string_view) { FAIL(); };
    readForTwo(numberedChunks(0, read), 4, refuse, refuse);
}

TEST(ReadForTwo, throwsTheFailureOfEachOfTheThree) {
    const auto accept = [](std::string_view) {};
    const auto fail = [](std::string_view) { throw std::runtime_error("taker"); };
    int read = 0;
    EXPECT_EQ(thrown<std::runtime_error>([&] { readForTwo(numberedChunks(9, read), 4, fail, accept); }),
              "taker");
    read = 0;
    EXPECT_EQ(thrown<std::runtime_error>([&] { readForTwo(numberedChunks(9, read), 4, accept, fail); }),
              "taker");
    const auto broken = [](std::span<char>) -> std::size_t { throw std::runtime_error("source"); };
    EXPECT_EQ(thrown<std::runtime_error>([&] { readForTwo(broken, 4, accept, accept); }), "source");
}

TEST(ReadForTwo, keepsTheFasterOneAFewChunksAheadAtMost) {
    int read = 0;
    int ahead = 0;
    std::atomic<int> taken = 0;
    const auto source = [&](std::span<char> into) -> std::size_t {
        ahead = std::max(ahead, read - taken);
        return read++ < 100 ? into.size() : 0;
    };
    readForTwo(source, 4, [](std::string_view) {}, [&](std::string_view) { ++taken; });
    EXPECT_EQ(taken, 100);
    EXPECT_LE(ahead, 4);
}

} // namespace marrowbox
