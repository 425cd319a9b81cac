// Importing 20,000 downloaded files of 64 KB, against `cp -r` of the same files followed by `sync`.
#include "Measuring/Measure.h"
#include "Measuring/ScratchRepository.h"
#include "Measuring/StoredFiles.h"
#include "Platform/Digest.h"
#include "Repository/ObjectImport.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace marrowbox;

constexpr std::size_t fileCount = 20'000;
constexpr std::size_t fileSize = 64 << 10;
constexpr std::size_t batchSize = 32;
constexpr int rounds = 3;

std::string contentOf(std::size_t number) {
    return bench::contentOf(number, fileSize);
}

std::vector<SourceEntry> sourceEntries() {
    std::vector<SourceEntry> entries;
    for (std::size_t number = 0; number < fileCount; ++number) {
        Digest md5 = Digest::md5();
        md5.update(contentOf(number));
        entries.push_back({.id = std::to_string(number),
                           .path = "Folder " + std::to_string(number / 50) + "/" + std::to_string(number),
                           .version = "1",
                           .mimeType = "application/octet-stream",
                           .size = fileSize,
                           .md5 = SharedText(hexadecimal(md5.finish()))});
    }
    return entries;
}

/// What a download leaves: files in the page cache, on their way to the storage or not.
void writeFiles(const std::vector<SourceEntry>& entries, const fs::path& folder) {
    for (std::size_t number = 0; number < entries.size(); ++number) {
        const fs::path path = folder / entries[number].path.view();
        makeDirectories(path.parent_path());
        writeAll(openFile(path, O_WRONLY | O_CREAT | O_TRUNC), contentOf(number));
    }
}

double importSeconds(const std::vector<SourceEntry>& entries) {
    const bench::ScratchRepository scratch("import");
    const fs::path work = scratch.repository().staging(Uuid::random());
    writeFiles(entries, work);
    return bench::seconds([&] {
        ObjectImport import(scratch.repository());
        const std::span all(entries);
        for (std::size_t offset = 0; offset < all.size(); offset += batchSize) {
            const auto batch = all.subspan(offset, std::min(batchSize, all.size() - offset));
            import.importFiles(batch, work, {});
        }
        import.synchronizeFolders();
    });
}

double copySeconds(const fs::path& source, const fs::path& target) {
    const std::string command = "cp -r '" + source.string() + "' '" + target.string() + "' && sync";
    const double taken = bench::seconds([&] {
        if (std::system(command.c_str()) != 0)
            throw std::runtime_error("The copy failed.");
    });
    fs::remove_all(target);
    return taken;
}

} // namespace

int main() {
    const fs::path folder = fs::temp_directory_path() / "marrowbox-bench-copied";
    const auto entries = sourceEntries();
    fs::create_directories(folder);
    writeFiles(entries, folder / "source");
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        ::sync();
        theirs.push_back(copySeconds(folder / "source", folder / "target"));
        ::sync();
        ours.push_back(importSeconds(entries));
        ratios.push_back(ours.back() / theirs.back());
    }
    fs::remove_all(folder);
    const bench::Ratio ratio{bench::median(ours), bench::median(theirs), bench::median(ratios)};
    return bench::reportAtMost("import", ratio.ratio, 1.3, bench::describe(ratio));
}
