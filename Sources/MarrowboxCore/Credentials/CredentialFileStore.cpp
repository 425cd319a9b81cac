#include "Credentials/CredentialFileStore.h"

#include "Credentials/CredentialDocument.h"
#include "Credentials/CredentialSafety.h"
#include "Credentials/TemporaryCredentialFile.h"
#include "Models/BackupError.h"
#include "Models/JSONFile.h"

#include <algorithm>
#include <cerrno>

namespace marrowbox {

namespace {

constexpr std::size_t longestKey = 200;

/// Orders the threads of this process. The lock on the file is refused rather than waited for, so threads
/// must not meet there.
std::mutex& processLock() {
    static std::mutex lock;
    return lock;
}

bool mayStandInKey(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '.' || character == '_' || character == '-';
}

bool isKey(std::string_view key) {
    return !key.empty() && key.size() <= longestKey && std::all_of(key.begin(), key.end(), mayStandInKey);
}

std::string validated(std::string_view key) {
    if (!isKey(key))
        throw BackupError("Invalid credential identifier.");
    return std::string(key);
}

void prepareDirectory(const fs::path& directory, const CredentialFileCalls& calls) {
    if (!linkStatus(directory)) {
        // Nothing is made in a folder of somebody else's; that there is none is the system's to say.
        if (linkStatus(directory.parent_path()))
            validateCredentialParent(directory);
        makeDirectory(directory, 0700);
    }
    validateCredentialDirectory(directory, calls);
    excludeFromSystemBackups(directory);
}

/// Opens the file that was seen; absent when it cannot be, or when it is no longer that file.
Descriptor openSeen(const fs::path& path, const struct stat& seen, const CredentialFileCalls& calls) {
    Descriptor file(calls.open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC, 0));
    struct stat opened{};
    if (!file || ::fstat(file.number(), &opened) != 0)
        return {};
    if (opened.st_dev != seen.st_dev || opened.st_ino != seen.st_ino || !isPrivateFile(opened))
        return {};
    return file;
}

std::optional<CredentialDocument> readSeen(const fs::path& path, const struct stat& seen,
                                           const CredentialFileCalls& calls) {
    const Descriptor file = openSeen(path, seen, calls);
    if (!file)
        return std::nullopt;
    try {
        return decodeJSON<CredentialDocument>(readAll(file));
    } catch (const JSONDecodingError&) {
        return std::nullopt;
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

} // namespace

CredentialFileStore::CredentialFileStore(fs::path directory, CredentialFileCalls calls)
    : directory_(std::move(directory)), calls_(std::move(calls)) {
}

CredentialFileStore::Access::Access(const CredentialFileStore& store)
    : store_(store), threads_(processLock()), processes_(enter()) {
    // Again, since the lock file may have been made just now.
    validateCredentialDirectory(store_.directory_, store_.calls_);
}

RepositoryLock CredentialFileStore::Access::enter() const {
    prepareDirectory(store_.directory_, store_.calls_);
    return RepositoryLock(credentialLockFile(store_.directory_),
                          "This backup is already in use. Wait for the other job to finish.");
}

std::optional<std::string> CredentialFileStore::Access::read(std::string_view key) const {
    CredentialDocument document = load();
    const auto found = document.values.find(validated(key));
    if (found == document.values.end())
        return std::nullopt;
    return std::move(found->second.bytes);
}

std::set<std::string> CredentialFileStore::Access::keys() const {
    std::set<std::string> keys;
    const CredentialDocument document = load();
    for (const auto& [key, value] : document.values)
        if (isKey(key)) // no other can be read
            keys.insert(key);
    return keys;
}

void CredentialFileStore::Access::save(std::string_view bytes, std::string_view key) const {
    CredentialDocument document = load();
    document.values[validated(key)] = ByteString{std::string(bytes)};
    write(document);
}

void CredentialFileStore::Access::remove(std::string_view key) const {
    CredentialDocument document = load();
    document.values.erase(validated(key));
    write(document);
}

CredentialDocument CredentialFileStore::Access::load() const {
    const fs::path path = credentialFile(store_.directory_);
    struct stat seen{};
    if (store_.calls_.lstat(path.c_str(), &seen) != 0) {
        if (errno == ENOENT)
            return {};
        throw BackupError("Credential file identity could not be verified.");
    }
    std::optional<CredentialDocument> document = readSeen(path, seen, store_.calls_);
    // One sentence for a file that was swapped, that cannot be read and that makes no sense: in each case it
    // is not to be touched.
    if (!document)
        throw BackupError("The credential file is unreadable or damaged. It was left unchanged.");
    if (document->version != 1)
        throw BackupError("The credential file version is unsupported. It was left unchanged.");
    return std::move(*document);
}

void CredentialFileStore::Access::write(const CredentialDocument& document) const {
    const fs::path& directory = store_.directory_;
    const CredentialFileCalls& calls = store_.calls_;
    validateCredentialDirectory(directory, calls);
    const std::string text = encodeJSON(document, JSONStyle::compact);
    TemporaryCredentialFile file(directory, calls);
    file.write(text);
    // The first credential may be the first thing in a new folder, whose own name has to reach the disk.
    if (!linkStatus(credentialFile(directory)))
        synchronizeFolder(directory.parent_path());
    file.replace(credentialFile(directory));
    // The rename too has to reach the disk. From here on the new file is in place, whatever happens.
    const Descriptor folder(calls.open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    if (!folder || calls.fsync(folder.number()) != 0)
        throw BackupError("Credentials were saved but durability could not be confirmed.");
    validateCredentialDirectory(directory, calls);
}

} // namespace marrowbox
