#pragma once

#include "Models/ObjectHash.h"
#include "Platform/Descriptor.h"
#include "Platform/Files.h"

#include <cstdint>
#include <stop_token>
#include <string>

namespace marrowbox {

/// What one pass over a file's bytes tells.
struct FileDigest {
    ObjectHash sha256 = ObjectHash("");
    std::string md5;       ///< 32 lower-case hexadecimal digits; empty when it was not asked for.
    std::int64_t size = 0; ///< Bytes that were read.

    friend bool operator==(const FileDigest&, const FileDigest&) = default;
};

/// Which digests a caller needs. SHA-256 names the stored content; MD5 only compares with what a source says.
enum class DigestChoice { sha256, sha256AndMD5 };

/// Digests a file in one pass, in chunks of 1 MiB, with a few chunks in memory at most. Two digests of a
/// large file advance side by side on two threads. Throws std::system_error, and CancellationError between
/// chunks.
FileDigest digestFile(const fs::path& path, DigestChoice choice, std::stop_token stop);
/// The same for the rest of an open file; the path is for the words of a failure.
FileDigest digestFile(const Descriptor& file, const fs::path& path, DigestChoice choice,
                      std::stop_token stop);

} // namespace marrowbox
