#include "Credentials/CredentialSafety.h"

#include "Models/BackupError.h"

#include <optional>

namespace marrowbox {

namespace {

constexpr mode_t permissionBits = 0777;
constexpr mode_t writableByOthers = 0022;

bool belongsToThisUser(const struct stat& status) {
    return status.st_uid == ::getuid();
}

bool isSafeParent(const fs::path& parent) {
    const auto status = linkStatus(parent);
    return status && S_ISDIR(status->st_mode) && belongsToThisUser(*status) &&
           (status->st_mode & writableByOthers) == 0;
}

bool isPrivateDirectory(const fs::path& directory) {
    const auto status = linkStatus(directory);
    return status && S_ISDIR(status->st_mode) && belongsToThisUser(*status) &&
           (status->st_mode & permissionBits) == 0700;
}

bool isAbsentOrPrivate(const fs::path& file, const CredentialFileCalls& calls) {
    const auto status = linkStatus(file);
    return !status || (isPrivateFile(*status) && !hasAccessList(file, calls));
}

} // namespace

fs::path credentialFile(const fs::path& directory) {
    return directory / "credentials.json";
}

fs::path credentialLockFile(const fs::path& directory) {
    return directory / "credentials.lock";
}

bool isPrivateFile(const struct stat& status) {
    return S_ISREG(status.st_mode) && belongsToThisUser(status) && status.st_nlink == 1 &&
           (status.st_mode & permissionBits) == 0600;
}

bool hasAccessList(const fs::path& path, const CredentialFileCalls& calls) {
    const AccessList list = calls.accessList(path);
    if (list == AccessList::unknown)
        throw BackupError("Credential access rules could not be verified.");
    return list == AccessList::present;
}

void validateCredentialParent(const fs::path& directory) {
    if (!isSafeParent(directory.parent_path()))
        throw BackupError("Credential storage parent is unsafe. Credentials were not accessed.");
}

void validateCredentialDirectory(const fs::path& directory, const CredentialFileCalls& calls) {
    validateCredentialParent(directory);
    if (!isPrivateDirectory(directory) || hasAccessList(directory, calls))
        throw BackupError("Credential storage permissions are unsafe. Credentials were not accessed.");
    if (!isAbsentOrPrivate(credentialFile(directory), calls))
        throw BackupError(
            "Credential file identity or permissions are unsafe. Credentials were not accessed.");
    if (!isAbsentOrPrivate(credentialLockFile(directory), calls))
        throw BackupError(
            "Credential lock identity or permissions are unsafe. Credentials were not accessed.");
}

} // namespace marrowbox
