#include "Program/GeneratedSource.h"

#include "Platform/Digest.h"
#include "Platform/Files.h"

#include <fcntl.h>
#include <map>

namespace marrowbox::test {

namespace {

constexpr int fileCount = 40;
constexpr int changedFiles = 16;
constexpr int lastGeneration = 2;

/// The version that a file has in a generation: some files change with each.
int versionOf(int number, int generation) {
    return number < changedFiles ? generation : 1;
}

std::size_t sizeOf(int number) {
    if (number == 5)
        return 0;
    if (number == 7)
        return (1 << 20) + 4097;
    return 100 + static_cast<std::size_t>(number) * 700;
}

GeneratedFile generateFile(int number, int version) {
    const int seed = number == 12 ? 11 : number; // two equal files
    GeneratedFile file{.content =
                           "File " + std::to_string(seed) + ", version " + std::to_string(version) + ".\n"};
    while (file.content.size() < sizeOf(seed))
        file.content += std::string(file.content);
    file.content.resize(sizeOf(seed));
    Digest md5 = Digest::md5();
    md5.update(file.content);
    file.md5 = hexadecimal(md5.finish());
    file.sha256 = hexadecimal(sha256(file.content));
    return file;
}

using FileKey = std::pair<int, int>; // number, version

const GeneratedFile& generatedFile(int number, int version) {
    static const std::map<FileKey, GeneratedFile> files = [] {
        std::map<FileKey, GeneratedFile> made;
        for (int known = 0; known < fileCount + lastGeneration; ++known)
            for (int generation = 1; generation <= lastGeneration; ++generation)
                made.emplace(FileKey(known, generation), generateFile(known, generation));
        return made;
    }();
    return files.at({number, version});
}

/// The last file moves from folder to folder.
std::string pathOf(int number, int generation) {
    const int folder = number == fileCount - 1 ? generation % 4 : number % 4;
    return "Folder " + std::to_string(folder) + "/File " + std::to_string(number) + ".bin";
}

SourceEntry fileEntry(int number, int generation) {
    const int version = versionOf(number, generation);
    const GeneratedFile& file = generatedFile(number, version);
    return {.id = std::to_string(number),
            .path = pathOf(number, generation),
            .version = std::to_string(version),
            .mimeType = "application/octet-stream",
            .size = static_cast<std::int64_t>(file.content.size()),
            .md5 = file.md5,
            .isDirectory = false};
}

SourceEntry folderEntry(int number) {
    return {.id = "folder " + std::to_string(number),
            .path = "Folder " + std::to_string(number),
            .version = "1",
            .mimeType = "application/vnd.google-apps.folder",
            .size = -1,
            .md5 = std::nullopt,
            .isDirectory = true};
}

} // namespace

std::vector<SourceEntry> generatedEntries(int generation) {
    std::vector<SourceEntry> entries;
    for (int number = 0; number < 4; ++number)
        entries.push_back(folderEntry(number));
    // Each generation loses the first file of the one before and has one more at the end.
    for (int number = generation - 1; number < fileCount + generation - 1; ++number)
        entries.push_back(fileEntry(number, generation));
    return entries;
}

const GeneratedFile& generatedFile(const SourceEntry& entry) {
    return generatedFile(std::stoi(entry.id.string()), std::stoi(entry.version.string()));
}

SyncUnit generatedUnit() {
    SyncUnit unit;
    unit.id = *Uuid::parse("6F9619FF-8B86-4011-B42D-00C04FC964FF");
    return unit;
}

asio::awaitable<std::vector<SourceEntry>> GeneratedSource::inventory(std::stop_token) {
    co_return generatedEntries(generation_);
}

asio::awaitable<void> GeneratedSource::download(std::vector<SourceEntry> entries, fs::path folder,
                                                std::stop_token) {
    for (const SourceEntry& entry : entries) {
        const fs::path path = folder / entry.path.view();
        makeDirectories(path.parent_path());
        writeAll(openFile(path, O_WRONLY | O_CREAT | O_EXCL), generatedFile(entry).content);
    }
    co_return;
}

} // namespace marrowbox::test
