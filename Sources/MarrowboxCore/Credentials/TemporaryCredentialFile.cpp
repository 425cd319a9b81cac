#include "Credentials/TemporaryCredentialFile.h"

#include "Credentials/CredentialSafety.h"
#include "Models/BackupError.h"
#include "Models/Uuid.h"

namespace marrowbox {

namespace {

[[noreturn]] void throwNotSaved() {
    throw BackupError("Credentials could not be saved; existing credentials are unchanged.");
}

} // namespace

TemporaryCredentialFile::TemporaryCredentialFile(const fs::path& directory, const CredentialFileCalls& calls)
    : calls_(calls), path_(directory / (".credentials-" + Uuid::random().text() + ".tmp")),
      file_(calls.open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600)) {
    if (!file_)
        throwNotSaved();
}

TemporaryCredentialFile::~TemporaryCredentialFile() {
    if (file_ && !isInPlace_)
        ::unlink(path_.c_str());
}

void TemporaryCredentialFile::write(std::string_view bytes) {
    // A umask can take bits from the mode, and a default access control list of the folder can add readers.
    if (!isPrivate())
        throw BackupError("Credentials could not be saved safely; existing credentials are unchanged.");
    while (!bytes.empty()) {
        const ssize_t count = calls_.write(file_.number(), bytes.data(), bytes.size());
        if (count < 1)
            throwNotSaved();
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    if (calls_.fsync(file_.number()) != 0)
        throwNotSaved();
}

bool TemporaryCredentialFile::isPrivate() const {
    struct stat status{};
    return ::fstat(file_.number(), &status) == 0 && isPrivateFile(status) && !hasAccessList(path_, calls_);
}

void TemporaryCredentialFile::replace(const fs::path& target) {
    if (calls_.rename(path_.c_str(), target.c_str()) != 0)
        throwNotSaved();
    isInPlace_ = true;
}

} // namespace marrowbox
