#pragma once

#include "Credentials/CredentialFileCalls.h"

namespace marrowbox {

/// The file of credentials and the lock beside it, in their folder.
fs::path credentialFile(const fs::path& directory);
fs::path credentialLockFile(const fs::path& directory);

/// A regular file of this user under one name only, with the mode 0600.
bool isPrivateFile(const struct stat& status);

/// Whether an access control list lets others at the path. Throws BackupError when the system will not tell.
bool hasAccessList(const fs::path& path, const CredentialFileCalls& calls);

/// Proves owner and mode of the folder above. Throws BackupError.
void validateCredentialParent(const fs::path& directory);

/// Proves that nobody else can read or swap the credentials: owner, kind, mode and access control list of the
/// folder and of the files in it, and owner and mode of the folder above. Links are never followed, nothing
/// is mended, and a file that is not there yet passes. Throws BackupError for the first check that fails.
void validateCredentialDirectory(const fs::path& directory, const CredentialFileCalls& calls);

} // namespace marrowbox
