// Both digests of 1 GiB in the page cache, against OpenSSL's MD5 alone on the same bytes.
#include "Platform/Digest.h"
#include "Measuring/Measure.h"
#include "Repository/BackupRepository.h"

#include <cstdio>
#include <fcntl.h>
#include <memory>

namespace {

using namespace marrowbox;

constexpr std::size_t fileSize = std::size_t(1) << 30;
constexpr std::size_t chunkSize = 1 << 20;

std::string patternedChunk() {
    std::string bytes(chunkSize, '\0');
    for (std::size_t index = 0; index < bytes.size(); ++index)
        bytes[index] = static_cast<char>(index * 2654435761U >> 13);
    return bytes;
}

/// One digest alone, over the file as it is read.
void digestAlone(const fs::path& path, Digest digest) {
    const Descriptor file = openFile(path, O_RDONLY);
    const auto buffer = std::make_unique_for_overwrite<char[]>(chunkSize);
    while (const std::size_t count = readSome(file, {buffer.get(), chunkSize}))
        digest.update({buffer.get(), count});
    digest.finish();
}

} // namespace

int main() {
    const fs::path path = fs::temp_directory_path() / "marrowbox-bench-digest";
    {
        const Descriptor file = openFile(path, O_WRONLY | O_CREAT | O_TRUNC);
        const std::string chunk = patternedChunk();
        for (std::size_t written = 0; written < fileSize; written += chunkSize)
            writeAll(file, chunk);
    }
    const auto both = [&] { BackupRepository::digest(path, {}); };
    const auto md5 = bench::compare(5, both, [&] { digestAlone(path, Digest::md5()); });
    // Where the processor has no SHA instructions, SHA-256 alone is slower than MD5, and no program that
    // needs both can be faster than it.
    const double sha256 = bench::seconds([&] { digestAlone(path, Digest::sha256()); });
    fs::remove(path);
    char remark[120];
    std::snprintf(remark, sizeof remark, "%s; SHA-256 alone takes %.1f ms", bench::describe(md5).c_str(),
                  sha256 * 1000);
    return bench::reportAtLeast("digest", 1 / md5.ratio, 0.9, remark);
}
