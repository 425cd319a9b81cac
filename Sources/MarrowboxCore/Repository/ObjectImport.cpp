#include "Repository/ObjectImport.h"

#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "Platform/PlainFile.h"

#include <algorithm>
#include <exception>
#include <fcntl.h>

namespace marrowbox {

namespace {

/// A downloaded file that is what its source says, with its bytes on stable storage.
struct PreparedFile {
    FileDigest digest;
    /// An object of these bytes was in place already and is whole. The downloaded copy is not needed then.
    bool isProvenThere = false;
};

bool isThere(const fs::path& path) {
    // A path that cannot be examined is a failure, never a free place.
    return fs::exists(fs::symlink_status(path));
}

void requireRegularFile(const fs::path& file, const SourceEntry& source) {
    struct stat status{};
    if (::lstat(file.c_str(), &status) != 0)
        throwSystemError("stat", file);
    if (!S_ISREG(status.st_mode))
        throw BackupError("A downloaded file is missing: " + source.path.string());
}

void verify(const FileDigest& digest, const SourceEntry& source) {
    // What a source says of a document's size does not hold for its converted bytes.
    if (!source.isExport() && source.size >= 0 && source.size != digest.size)
        throw BackupError("Size verification failed for “" + source.path.string() + "”.");
    if (source.md5 && !std::ranges::equal(source.md5->view(), digest.md5, [](char given, char computed) {
            return (given >= 'A' && given <= 'Z' ? given - 'A' + 'a' : given) == computed;
        }))
        throw BackupError("Checksum verification failed for “" + source.path.string() + "”.");
}

/// Digests the file while the system writes it, since it has to be on storage soon.
FileDigest digestDownload(const fs::path& file, const SourceEntry& source, const std::stop_token& stop) {
    const Descriptor opened = openPlainFile(file);
    startWriting(opened);
    const auto choice = source.md5 ? DigestChoice::sha256AndMD5 : DigestChoice::sha256;
    return digestFile(opened, file, choice, stop);
}

/// A run that was stopped may have left an object that no manifest names and no one has synchronised.
void proveExisting(const fs::path& object, const ObjectHash& hash, const std::stop_token& stop) {
    const Descriptor opened = openPlainFile(object);
    if (digestFile(opened, object, DigestChoice::sha256, stop).sha256 != hash)
        throw BackupError("An existing backup object is damaged. No snapshot was published.");
    synchronize(opened, object);
}

void makeDurable(const fs::path& file) {
    if (::chmod(file.c_str(), 0600) != 0)
        throwSystemError("chmod", file);
    synchronizeFile(file);
}

/// Everything about one file that needs no order among the files of a batch.
PreparedFile prepare(const ObjectPaths& objects, const fs::path& file, const SourceEntry& source,
                     const std::stop_token& stop) {
    rejectSymlink(file);
    requireRegularFile(file, source);
    PreparedFile prepared{.digest = digestDownload(file, source, stop)};
    verify(prepared.digest, source);
    const ObjectHash& hash = prepared.digest.sha256;
    rejectSymlink(objects.objects); // a run takes long, and a shared folder can be swapped meanwhile
    rejectSymlink(objects.fanOut(hash));
    rejectSymlink(objects.object(hash));
    prepared.isProvenThere = isThere(objects.object(hash));
    if (prepared.isProvenThere)
        proveExisting(objects.object(hash), hash, stop);
    else
        makeDurable(file);
    return prepared;
}

} // namespace

SnapshotEntry ObjectImport::place(const fs::path& file, const SourceEntry& source, const FileDigest& digest,
                                  bool isProvenThere, const std::stop_token& stop) {
    const fs::path object = objects_.object(digest.sha256);
    rejectSymlink(object.parent_path());
    rejectSymlink(object);
    touched_.set(digest.sha256.firstByte());
    makeDirectories(object.parent_path());
    if (!isThere(object))
        fs::rename(file, object);
    else if (!isProvenThere) // an earlier file of the batch had the same bytes
        proveExisting(object, digest.sha256, stop);
    return {.source = source, .objectHash = digest.sha256, .storedSize = digest.size};
}

SnapshotEntry ObjectImport::importFile(const fs::path& file, const SourceEntry& source,
                                       std::stop_token stop) {
    const auto prepared = prepare(objects_, file, source, stop);
    return place(file, source, prepared.digest, prepared.isProvenThere, stop);
}

std::vector<SnapshotEntry> ObjectImport::importFiles(std::span<const SourceEntry> batch,
                                                     const fs::path& folder, std::stop_token stop) {
    std::vector<PreparedFile> prepared(batch.size());
    const auto failed = workers_.forEach(batch.size(), [&](std::size_t index) {
        throwIfCancelled(stop);
        prepared[index] = prepare(objects_, folder / batch[index].path.view(), batch[index], stop);
    });
    const std::size_t placed = failed ? failed->index : batch.size();
    std::vector<SnapshotEntry> imported;
    imported.reserve(placed);
    for (std::size_t index = 0; index < placed; ++index)
        imported.push_back(place(folder / batch[index].path.view(), batch[index], prepared[index].digest,
                                 prepared[index].isProvenThere, stop));
    if (failed)
        std::rethrow_exception(failed->failure);
    return imported;
}

void ObjectImport::synchronizeFolders() {
    if (touched_.none())
        return;
    std::vector<fs::path> folders{objects_.objects};
    for (std::size_t number = 0; number < touched_.size(); ++number)
        if (touched_.test(number))
            folders.push_back(objects_.fanOut(static_cast<std::uint8_t>(number)));
    const auto failed =
        workers_.forEach(folders.size(), [&](std::size_t index) { synchronizeFolder(folders[index]); });
    if (failed)
        std::rethrow_exception(failed->failure);
    touched_.reset();
}

SnapshotEntry BackupRepository::importFile(const fs::path& file, const SourceEntry& source,
                                           std::stop_token stop) const {
    ObjectImport import(*this);
    SnapshotEntry entry = import.importFile(file, source, std::move(stop));
    import.synchronizeFolders();
    return entry;
}

} // namespace marrowbox
