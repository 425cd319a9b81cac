#pragma once

#include "Credentials/CredentialFileCalls.h"

#include <string_view>

namespace marrowbox {

/// New credentials on their way into place: a private file under a name of its own that takes the place of
/// the old one in one rename, or goes away with the object. Every failure is a BackupError which says that
/// the existing credentials are unchanged.
class TemporaryCredentialFile {
  public:
    /// Makes the empty file.
    TemporaryCredentialFile(const fs::path& directory, const CredentialFileCalls& calls);
    TemporaryCredentialFile(const TemporaryCredentialFile&) = delete;
    TemporaryCredentialFile& operator=(const TemporaryCredentialFile&) = delete;
    ~TemporaryCredentialFile();

    /// Proves that nobody else can read the file, writes the bytes and synchronises them to stable storage.
    void write(std::string_view bytes);
    /// Renames onto the target.
    void replace(const fs::path& target);

  private:
    bool isPrivate() const;

    const CredentialFileCalls& calls_;
    fs::path path_;
    Descriptor file_;
    bool isInPlace_ = false;
};

} // namespace marrowbox
