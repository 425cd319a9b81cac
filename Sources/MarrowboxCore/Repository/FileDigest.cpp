#include "Repository/FileDigest.h"

#include "Platform/Cancellation.h"
#include "Platform/Digest.h"
#include "Repository/SideBySide.h"

#include <algorithm>
#include <fcntl.h>
#include <memory>

namespace marrowbox {

namespace {

constexpr std::size_t chunkSize = 1 << 20;
/// Below this, a thread of its own costs more than it saves.
constexpr std::int64_t sideBySideSize = 4 << 20;

std::int64_t currentSize(const Descriptor& file, const fs::path& path) {
    struct stat status{};
    if (::fstat(file.number(), &status) != 0)
        throwSystemError("stat", path);
    return status.st_size;
}

FileDigest digestInTurn(const Descriptor& file, std::size_t bufferSize, DigestChoice choice,
                        const std::stop_token& stop) {
    Digest sha256 = Digest::sha256();
    Digest md5 = Digest::md5();
    FileDigest result;
    const auto buffer = std::make_unique_for_overwrite<char[]>(bufferSize);
    while (const std::size_t count = readSome(file, {buffer.get(), bufferSize})) {
        throwIfCancelled(stop);
        const std::string_view chunk(buffer.get(), count);
        sha256.update(chunk);
        if (choice == DigestChoice::sha256AndMD5)
            md5.update(chunk);
        result.size += static_cast<std::int64_t>(count);
    }
    result.sha256 = ObjectHash::ofDigest(sha256.finish());
    if (choice == DigestChoice::sha256AndMD5)
        result.md5 = hexadecimal(md5.finish());
    return result;
}

FileDigest digestSideBySide(const Descriptor& file, const std::stop_token& stop) {
    Digest sha256 = Digest::sha256();
    Digest md5 = Digest::md5();
    FileDigest result;
    readForTwo(
        [&](std::span<char> into) {
            const std::size_t count = readSome(file, into);
            if (count > 0)
                throwIfCancelled(stop);
            return count;
        },
        chunkSize,
        [&](std::string_view chunk) {
            sha256.update(chunk);
            result.size += static_cast<std::int64_t>(chunk.size());
        },
        [&](std::string_view chunk) { md5.update(chunk); });
    result.sha256 = ObjectHash::ofDigest(sha256.finish());
    result.md5 = hexadecimal(md5.finish());
    return result;
}

} // namespace

FileDigest digestFile(const Descriptor& file, const fs::path& path, DigestChoice choice,
                      std::stop_token stop) {
    const std::int64_t size = currentSize(file, path);
    if (choice == DigestChoice::sha256AndMD5 && size >= sideBySideSize)
        return digestSideBySide(file, stop);
    // One byte more than the file has, so that a small one is read, and its end seen, with two short calls.
    const auto wanted = static_cast<std::size_t>(std::clamp<std::int64_t>(size, 0, chunkSize - 1)) + 1;
    return digestInTurn(file, wanted, choice, stop);
}

FileDigest digestFile(const fs::path& path, DigestChoice choice, std::stop_token stop) {
    return digestFile(openFile(path, O_RDONLY), path, choice, std::move(stop));
}

} // namespace marrowbox
